#include "frontends/commandline/CallCommand.h"

#include <cstdio>

#include "Control/KestrelonControl.h"
#include "frontends/commandline/Documents.h"
#include "frontends/commandline/ExitStatus.h"
#include "frontends/commandline/JsonValue.h"

namespace kestrelon::commandline {
namespace {

constexpr int32_t kOkButton = 1;

const Member& RequireMember(const std::string& name) {
  const Member* member = FindMember(FromUtf8(name));
  if (member == nullptr) {
    throw BadCommandLine("there is no member \"" + name +
                         "\"; \"kestrelon members\" lists them all");
  }
  return *member;
}

size_t RequireParameter(const Member& member, const std::string& name) {
  const std::optional<size_t> index = FindParameter(member, FromUtf8(name));
  if (index) return *index;
  std::string names;
  for (const Parameter& parameter : member.parameters) {
    names += (names.empty() ? "" : ", ") + ToUtf8(parameter.name);
  }
  throw BadCommandLine(ToUtf8(member.name) + " has no parameter \"" + name + "\"; it has " +
                       (names.empty() ? "none" : names));
}

// A text file's content without the byte order mark.
String TextOfFile(const std::string& path) {
  const std::string content = ReadFile(path);
  const bool marked = content.starts_with("\xEF\xBB\xBF");
  return FromUtf8(std::string_view(content).substr(marked ? 3 : 0));
}

Value ReadArgument(const Parameter& parameter, const std::string& text, const TraceSink& trace) {
  const bool from_file = text.starts_with('@') && !text.starts_with("@@");
  if (IsDocument(parameter.type)) {
    return from_file ? DocumentFromFile(parameter, text.substr(1), trace)
                     : DocumentFromText(parameter, text, trace);
  }
  if (from_file) return TextOfFile(text.substr(1));
  const Value value = FromUtf8(text.starts_with('@') ? text.substr(1) : text);
  // What the type refuses is refused before the member is called.
  if (parameter.type == ParameterType::kBoolean) return value.ToBoolean();
  if (parameter.type == ParameterType::kInteger) return static_cast<int32_t>(value.ToInteger());
  return value;
}

std::vector<Value> ReadArguments(const Member& member, const CallRequest& request) {
  std::vector<Value> values(member.parameters.size(), Value(Value::Omitted{}));
  for (const std::string& argument : request.arguments) {
    const size_t equals = argument.find('=');
    if (equals == std::string::npos) {
      throw BadCommandLine("\"" + argument + "\" is no NAME=VALUE");
    }
    const size_t index = RequireParameter(member, argument.substr(0, equals));
    const Parameter& parameter = member.parameters[index];
    try {
      values[index] = ReadArgument(parameter, argument.substr(equals + 1), request.trace);
    } catch (const AutomationError& error) {
      throw BadCommandLine("the value of " + ToUtf8(parameter.name) +
                           " cannot be used: " + ToUtf8(error.description()));
    }
  }
  for (size_t i = 0; i < values.size(); ++i) {
    if (values[i].IsOmitted() && !member.parameters[i].optional) {
      throw BadCommandLine(ToUtf8(member.name) + " needs a value for " +
                           ToUtf8(member.parameters[i].name) + " (" +
                           ToUtf8(member.parameters[i].name) + "=…)");
    }
  }
  return values;
}

std::string PrintableResult(const Value& result) {
  if (result.IsObject() && result.AsObject() != nullptr) return ToJson(result).dump() + "\n";
  if (result.IsEmpty() || result.IsNull() || result.IsObject()) return "";
  return ToUtf8(result.ToText()) + "\n";
}

}  // namespace

int CallMember(Platform& platform, const CallRequest& request, std::ostream& out,
               std::ostream& errors) {
  const Member& member = RequireMember(request.member);
  std::vector<Value> values = ReadArguments(member, request);
  KestrelonControl control(platform);
  try {
    const Value result = control.Invoke(member, values);
    if (member.result != ParameterType::kNone) out << PrintableResult(result) << std::flush;
    return kSuccess;
  } catch (const AutomationError& error) {
    errors << error.what() << std::endl;
    return kMemberFailed;
  }
}

int32_t ShowMessageOnTerminal(const String& text, int32_t /*flags*/,
                              const std::optional<String>& title) {
  std::fprintf(stderr, "[%s] %s\n", ToUtf8(title.value_or(kDefaultMessageTitle)).c_str(),
               ToUtf8(text).c_str());
  return kOkButton;
}

}  // namespace kestrelon::commandline
