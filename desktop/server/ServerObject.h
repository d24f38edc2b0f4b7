// Base of the automation servers of this desktop: a class lists its members once, in a table, and
// the base finds them without regard to case, brings named arguments into their places and refuses
// what does not fit with the classic errors.
//
//   class Find final : public ServerObject<Find> {
//    public:
//     static const MemberTable<Find>& Members() {
//       static const MemberTable<Find> table = MemberTable<Find>(u"Find")
//           .Property(u"Text", &Find::GetText, &Find::PutText)
//           .Property(u"Found", &Find::GetFound)
//           .Method(u"Execute", &Find::Execute, {u"FindText", u"MatchCase"});
//       return table;
//     }
//   };
#pragma once

#include <memory>
#include <span>
#include <unordered_map>
#include <utility>
#include <vector>

#include "automation/DispatchObject.h"

namespace kestrelon::desktop {

// The arguments of one method call in the order of the method's parameters; absent ones are
// Omitted.
class MethodArguments {
 public:
  explicit MethodArguments(std::vector<Value> values)
      : own_values_(std::move(values)), values_(own_values_) {}
  // Of values that stay with the caller for the time of the call; a text may be a whole file.
  explicit MethodArguments(std::span<const Value> values) : values_(values) {}
  MethodArguments(const MethodArguments&) = delete;
  MethodArguments& operator=(const MethodArguments&) = delete;

  // Omitted past the end.
  const Value& operator[](size_t index) const {
    static const Value kOmitted{Value::Omitted{}};
    return index < values_.size() ? values_[index] : kOmitted;
  }
  bool Has(size_t index) const { return !(*this)[index].IsOmitted(); }
  // The argument, or error 449 when it was left out.
  const Value& Require(size_t index) const {
    if (!Has(index)) throw AutomationError(kArgumentNotOptional);
    return values_[index];
  }
  size_t size() const { return values_.size(); }

 private:
  std::vector<Value> own_values_;
  std::span<const Value> values_;
};

using ParameterNames = std::vector<StringView>;

// Positional and named arguments in the order of `names`. Error 448 for a name that is not there,
// 450 for too many arguments. `arguments` stay with the caller.
MethodArguments PlaceArguments(const Arguments& arguments, const ParameterNames& names);
// The name in the form the tables are keyed by. `buffer` keeps the text.
StringView FoldMemberName(StringView name, String& buffer);

template <class Server>
class MemberTable {
 public:
  using Getter = Value (Server::*)();
  using Setter = void (Server::*)(const Value&);
  using MethodBody = Value (Server::*)(const MethodArguments&);

  struct Member {
    Getter getter = nullptr;
    Setter setter = nullptr;
    MethodBody method = nullptr;
    ParameterNames parameters;
  };

  explicit MemberTable(StringView type_name) : type_name_(type_name) {}

  MemberTable Property(StringView name, Getter getter, Setter setter = nullptr) && {
    Member& member = At(name);
    member.getter = getter;
    member.setter = setter;
    return std::move(*this);
  }
  MemberTable Method(StringView name, MethodBody method, ParameterNames parameters = {}) && {
    Member& member = At(name);
    member.method = method;
    member.parameters = std::move(parameters);
    return std::move(*this);
  }

  const Member& Find(StringView name) const {
    String buffer;
    const auto found = members_.find(FoldMemberName(name, buffer));
    if (found == members_.end()) throw AutomationError(kMemberNotFound);
    return found->second;
  }
  // `name` as FoldMemberName gives it.
  bool Has(StringView name) const { return members_.contains(name); }
  StringView type_name() const { return type_name_; }

 private:
  Member& At(StringView name) {
    names_.push_back(std::make_unique<String>(LowerCase(name)));
    return members_[*names_.back()];
  }

  StringView type_name_;
  std::vector<std::unique_ptr<String>> names_;
  std::unordered_map<StringView, Member> members_;
};

// `Base` holds what several servers share: a class derived from DispatchObject, whose member
// functions may stand in the tables of those servers.
template <class Server, class Base = DispatchObject>
class ServerObject : public Base, public std::enable_shared_from_this<Server> {
 public:
  using Base::Base;

  Value Invoke(InvokeKind kind, StringView member, const Arguments& arguments) override {
    const auto& entry = Server::Members().Find(member);
    auto& server = static_cast<Server&>(*this);
    if (kind == InvokeKind::kPut) {
      if (entry.setter == nullptr) throw AutomationError(kMemberNotFound);
      if (arguments.positional.size() != 1 || !arguments.named.empty()) {
        throw AutomationError(kWrongNumberOfArguments);
      }
      (server.*entry.setter)(arguments.positional.front());
      return {};
    }
    if (entry.method != nullptr) {
      return (server.*entry.method)(PlaceArguments(arguments, entry.parameters));
    }
    if (!arguments.positional.empty() || !arguments.named.empty()) {
      return AskResultForItem((server.*entry.getter)(), arguments);
    }
    return (server.*entry.getter)();
  }
  String TypeName() const override { return String(Server::Members().type_name()); }

 private:
  // `document.Tables(1)`: arguments of a plain property belong to the default member of what it
  // returns.
  static Value AskResultForItem(const Value& result, const Arguments& arguments) {
    if (!result.IsObject() || result.AsObject() == nullptr) {
      throw AutomationError(kWrongNumberOfArguments);
    }
    return result.AsObject()->Invoke(InvokeKind::kCall, u"", arguments);
  }
};

template <class Server, typename... Args>
Value MakeObject(Args&&... args) {
  return Value(DispatchPointer(std::make_shared<Server>(std::forward<Args>(args)...)));
}

}  // namespace kestrelon::desktop
