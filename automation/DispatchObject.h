// Late-bound objects. A call site reads like script:
//
//   Object mail = outlook.Call(u"CreateItem", olMailItem).ToObject();
//   mail.Put(u"Subject", subject);
//   mail.Call(u"display");
//   document.Call(u"Range", Named(u"Start", 0), Named(u"End", 0));
//
// A server derives from DispatchObject; everyone else holds an Object.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "automation/AutomationError.h"
#include "automation/Value.h"

namespace kestrelon {

enum class InvokeKind { kGet, kPut, kCall };

struct NamedArgument {
  String name;
  Value value;
};

template <typename T>
NamedArgument Named(StringView name, T&& value) {
  return {String(name), Value(std::forward<T>(value))};
}

// What one invocation carries. For kPut the new value is the last positional argument.
struct Arguments {
  std::vector<Value> positional;
  std::vector<NamedArgument> named;

  void Add(Value value) { positional.push_back(std::move(value)); }
  void Add(NamedArgument argument) { named.push_back(std::move(argument)); }
};

// One walk over a collection, in its order.
class Enumerator {
 public:
  virtual ~Enumerator() = default;
  // The next element; nothing at the end.
  virtual std::optional<Value> Next() = 0;
};

// A walk over elements that are at hand.
class VectorEnumerator final : public Enumerator {
 public:
  explicit VectorEnumerator(std::vector<Value> items) : items_(std::move(items)) {}
  std::optional<Value> Next() override {
    if (next_ == items_.size()) return std::nullopt;
    return items_[next_++];
  }

 private:
  std::vector<Value> items_;
  size_t next_ = 0;
};

class DispatchObject {
 public:
  virtual ~DispatchObject() = default;

  // `member` is matched without regard to case; "" is the default member. A property get and a
  // method call of the same name are one thing to the caller, so a server answers kGet and kCall
  // alike. Throws AutomationError: 438 for an unknown member, and whatever the server reports.
  virtual Value Invoke(InvokeKind kind, StringView member, const Arguments& arguments) = 0;
  // Throws error 451 when the object is no collection.
  virtual std::unique_ptr<Enumerator> Enumerate();
  // The server's name of the object's type, for traces and messages ("Document").
  virtual String TypeName() const = 0;
  // The object behind a wrapper; nullptr when this is no wrapper.
  virtual DispatchPointer Wrapped() const { return nullptr; }
};

// A reference to an automation object, possibly Nothing. Using Nothing is error 91.
class Object {
 public:
  Object() = default;
  Object(std::nullptr_t) {}
  Object(DispatchPointer pointer) : pointer_(std::move(pointer)) {}

  bool IsNothing() const { return pointer_ == nullptr; }
  explicit operator bool() const { return pointer_ != nullptr; }
  void Release() { pointer_.reset(); }
  const DispatchPointer& pointer() const { return pointer_; }

  template <typename... Args>
  Value Get(StringView member, Args&&... args) const {
    return Invoke(InvokeKind::kGet, member, std::forward<Args>(args)...);
  }
  template <typename... Args>
  Value Call(StringView member, Args&&... args) const {
    return Invoke(InvokeKind::kCall, member, std::forward<Args>(args)...);
  }
  // Assigns a property; index arguments, if any, stand before the value.
  template <typename... Args>
  void Put(StringView member, Args&&... args) const {
    Invoke(InvokeKind::kPut, member, std::forward<Args>(args)...);
  }
  // Get and Call where the answer is an object: error 424 when it is none.
  template <typename... Args>
  Object GetChild(StringView member, Args&&... args) const {
    return Get(member, std::forward<Args>(args)...).ToObject();
  }
  template <typename... Args>
  Object CallChild(StringView member, Args&&... args) const {
    return Call(member, std::forward<Args>(args)...).ToObject();
  }
  Value GetDefault() const { return Get(u""); }
  void PutDefault(Value value) const { Put(u"", std::move(value)); }

  std::unique_ptr<Enumerator> Enumerate() const;

 private:
  template <typename... Args>
  Value Invoke(InvokeKind kind, StringView member, Args&&... args) const {
    Arguments arguments;
    (AddArgument(arguments, std::forward<Args>(args)), ...);
    return Require().Invoke(kind, member, arguments);
  }
  static void AddArgument(Arguments& arguments, NamedArgument argument) {
    arguments.Add(std::move(argument));
  }
  template <typename T>
  static void AddArgument(Arguments& arguments, T&& value) {
    arguments.Add(Value(std::forward<T>(value)));
  }
  DispatchObject& Require() const;

  DispatchPointer pointer_;
};

}  // namespace kestrelon
