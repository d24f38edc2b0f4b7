#include "automation/TracingObject.h"

#include <cstdio>

namespace kestrelon {
namespace {

constexpr size_t kLongestText = 500;

std::string QuoteText(StringView text) {
  const bool cut = text.size() > kLongestText;
  std::string quoted = "\"";
  for (const char byte : ToUtf8(text.substr(0, kLongestText))) {
    if (byte == '"' || byte == '\\') {
      quoted += '\\';
      quoted += byte;
    } else if (static_cast<unsigned char>(byte) < 0x20) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(byte));
      quoted += byte == '\n' ? "\\n" : byte == '\r' ? "\\r" : byte == '\t' ? "\\t" : escape;
    } else {
      quoted += byte;
    }
  }
  return quoted + (cut ? "…\"" : "\"");
}

class TracingObject;
const TracingObject* AsTraced(const DispatchPointer& object);

class TracingObject final : public DispatchObject {
 public:
  TracingObject(DispatchPointer object, std::string path, TraceSink sink)
      : object_(std::move(object)), path_(std::move(path)), sink_(std::move(sink)) {}

  Value Invoke(InvokeKind kind, StringView member, const Arguments& arguments) override {
    std::string line = member.empty() ? path_ : path_ + "." + ToUtf8(member);
    if (kind == InvokeKind::kPut) {
      line = DescribePut(line, arguments);
    } else if (kind == InvokeKind::kCall || !arguments.positional.empty() ||
               !arguments.named.empty()) {
      line = DescribeCall(line, arguments);
    }
    try {
      const Value result = object_->Invoke(kind, member, Unwrap(arguments));
      if (result.IsObject() && result.AsObject() != nullptr) {
        sink_(line);
        return TraceObject(result.ToObject(), line, sink_);
      }
      sink_(result.IsEmpty() ? line : line + " -> " + Describe(result));
      return result;
    } catch (const AutomationError& error) {
      sink_(line + DescribeFailure(error));
      throw;
    }
  }

  std::unique_ptr<Enumerator> Enumerate() override;
  String TypeName() const override { return object_->TypeName(); }
  DispatchPointer Wrapped() const override { return object_; }
  const std::string& path() const { return path_; }

  // "path = value"; index arguments, which stand before the value, as those of a call.
  static std::string DescribePut(std::string line, Arguments arguments) {
    if (arguments.positional.empty()) return line;
    const Value value = arguments.positional.back();
    arguments.positional.pop_back();
    if (!arguments.positional.empty() || !arguments.named.empty()) {
      line = DescribeCall(line, arguments);
    }
    return line + " = " + Describe(value);
  }

  static std::string Describe(const Value& value) {
    if (value.IsString()) return QuoteText(value.AsString());
    if (value.IsNull()) return "Null";
    if (value.IsEmpty()) return "Empty";
    if (value.IsOmitted()) return "";
    if (value.IsArray()) return "Array";
    if (!value.IsObject()) return ToUtf8(value.ToText());
    if (value.AsObject() == nullptr) return "Nothing";
    const TracingObject* traced = AsTraced(value.AsObject());
    return traced != nullptr ? traced->path() : "<" + ToUtf8(value.AsObject()->TypeName()) + ">";
  }

 private:
  // The servers know nothing of the tracing: they get their own objects back.
  static Value UnwrapValue(const Value& value) {
    if (!value.IsObject() || value.AsObject() == nullptr) return value;
    const DispatchPointer wrapped = value.AsObject()->Wrapped();
    return wrapped != nullptr ? Value(wrapped) : value;
  }
  static Arguments Unwrap(Arguments arguments) {
    for (Value& value : arguments.positional) value = UnwrapValue(value);
    for (NamedArgument& argument : arguments.named) argument.value = UnwrapValue(argument.value);
    return arguments;
  }

  DispatchPointer object_;
  std::string path_;
  TraceSink sink_;
};

const TracingObject* AsTraced(const DispatchPointer& object) {
  return dynamic_cast<const TracingObject*>(object.get());
}

// "For Each" over a traced collection: its elements are named by their place in the walk.
class TracingEnumerator final : public Enumerator {
 public:
  TracingEnumerator(std::unique_ptr<Enumerator> walk, std::string path, TraceSink sink)
      : walk_(std::move(walk)), path_(std::move(path)), sink_(std::move(sink)) {}
  std::optional<Value> Next() override {
    const std::string path = path_ + ".Each(" + std::to_string(++count_) + ")";
    try {
      std::optional<Value> element = walk_->Next();
      if (!element || !element->IsObject() || element->AsObject() == nullptr) return element;
      sink_(path);
      return TraceObject(element->ToObject(), path, sink_);
    } catch (const AutomationError& error) {
      sink_(path + DescribeFailure(error));
      throw;
    }
  }

 private:
  std::unique_ptr<Enumerator> walk_;
  std::string path_;
  TraceSink sink_;
  int count_ = 0;
};

std::unique_ptr<Enumerator> TracingObject::Enumerate() {
  try {
    return std::make_unique<TracingEnumerator>(object_->Enumerate(), path_, sink_);
  } catch (const AutomationError& error) {
    sink_(path_ + ".Each" + DescribeFailure(error));
    throw;
  }
}

}  // namespace

Object TraceObject(const Object& object, const std::string& path, const TraceSink& sink) {
  if (object.IsNothing()) return object;
  return Object(std::make_shared<TracingObject>(object.pointer(), path, sink));
}

std::string DescribeCall(const std::string& path, const Arguments& arguments) {
  std::string list;
  const auto add = [&list](const std::string& text) { list += (list.empty() ? "" : ", ") + text; };
  for (const Value& value : arguments.positional) add(TracingObject::Describe(value));
  for (const NamedArgument& argument : arguments.named) {
    add(ToUtf8(argument.name) + ":=" + TracingObject::Describe(argument.value));
  }
  return path + "(" + list + ")";
}

std::string DescribeFailure(const AutomationError& error) {
  return std::string(" ! ") + error.what();
}

}  // namespace kestrelon
