#include "frontends/commandline/Session.h"

#include "frontends/commandline/Documents.h"
#include "frontends/commandline/JsonValue.h"

namespace kestrelon::commandline {

using Json = nlohmann::ordered_json;

namespace {

constexpr int32_t kOkButton = 1;
constexpr int32_t kNoButton = 7;  // the last one there is
constexpr int kDeepestRequest = 64;

AutomationError BadRequest(const std::string& what) {
  return AutomationError(kInvalidProcedureCall, FromUtf8("Bad request: " + what));
}

Json ReadRequest(std::string_view line) {
  const auto refuse_deep = [](int depth, Json::parse_event_t /*event*/, Json& /*parsed*/) {
    if (depth > kDeepestRequest) throw BadRequest("it nests too deep");
    return true;
  };
  Json request = Json::parse(line, refuse_deep, false);
  if (request.is_discarded()) throw BadRequest("the line is no JSON");
  if (!request.is_object()) throw BadRequest("the line is no JSON object");
  for (const auto& [key, value] : request.items()) {
    if (key != "member" && key != "args" && key != "answers") {
      throw BadRequest("unknown key \"" + key + "\"; known are member, args and answers");
    }
  }
  if (!request.contains("member") || !request["member"].is_string()) {
    throw BadRequest("\"member\" must be the name of a member");
  }
  if (request.contains("args") && !request["args"].is_object()) {
    throw BadRequest("\"args\" must be an object of NAME: VALUE");
  }
  return request;
}

const Member& RequireMember(const std::string& name) {
  const Member* member = FindMember(FromUtf8(name));
  if (member == nullptr) {
    throw AutomationError(kMemberNotFound,
                          AutomationError(kMemberNotFound).description() + u": " + FromUtf8(name));
  }
  return *member;
}

std::vector<int32_t> ReadAnswers(const Json& request) {
  std::vector<int32_t> answers;
  if (!request.contains("answers")) return answers;
  const AutomationError refusal =
      BadRequest("\"answers\" must be an array of button numbers, 1 (OK) to 7 (No)");
  if (!request["answers"].is_array()) throw refusal;
  for (const Json& button : request["answers"]) {
    const int64_t number = button.is_number_integer() ? button.get<int64_t>() : 0;
    if (number < kOkButton || number > kNoButton) throw refusal;
    answers.push_back(static_cast<int32_t>(number));
  }
  return answers;
}

Value ReadArgument(const Parameter& parameter, const Json& json, const TraceSink& trace) {
  if (!IsDocument(parameter.type) || json.is_null()) return FromJson(json);
  if (json.is_string()) return DocumentFromText(parameter, json.get<std::string>(), trace);
  if (json.is_object() && json.size() == 1 && json.contains("file") && json["file"].is_string()) {
    return DocumentFromFile(parameter, json["file"].get<std::string>(), trace);
  }
  throw BadRequest("\"" + ToUtf8(parameter.name) + "\" takes markup or {\"file\": PATH}");
}

size_t RequireParameter(const Member& member, const String& name) {
  const std::optional<size_t> index = FindParameter(member, name);
  if (index) return *index;
  throw AutomationError(kNamedArgumentNotFound,
                        AutomationError(kNamedArgumentNotFound).description() + u": " + name);
}

void ReadArguments(const Member& member, const Json& request, const TraceSink& trace,
                   std::vector<Value>& values) {
  if (!request.contains("args")) return;
  for (const auto& [name, json] : request["args"].items()) {
    const size_t index = RequireParameter(member, FromUtf8(name));
    values[index] = ReadArgument(member.parameters[index], json, trace);
  }
}

Json WriteArguments(const Member& member, const std::vector<Value>& values) {
  Json arguments = Json::object();
  for (size_t i = 0; i < values.size(); ++i) {
    arguments[ToUtf8(member.parameters[i].name)] = ToJson(values[i]);
  }
  return arguments;
}

}  // namespace

int32_t MessageLog::Show(const String& text, int32_t flags, const std::optional<String>& title) {
  messages_.push_back({{"text", ToUtf8(text)},
                       {"flags", flags},
                       {"title", title ? Json(ToUtf8(*title)) : Json(nullptr)}});
  const size_t shown = messages_.size();
  return shown <= answers_.size() ? answers_[shown - 1] : kOkButton;
}

void MessageLog::Begin(std::vector<int32_t> answers) {
  messages_ = Json::array();
  answers_ = std::move(answers);
}

std::string Session::Answer(std::string_view line) {
  Json response = {{"result", nullptr}, {"args", Json::object()}};
  std::optional<AutomationError> failure;
  messages_.Begin({});
  try {
    const Json request = ReadRequest(line);
    const Member& member = RequireMember(request["member"].get<std::string>());
    std::vector<Value> values(member.parameters.size(), Value(Value::Omitted{}));
    messages_.Begin(ReadAnswers(request));
    ReadArguments(member, request, trace_, values);
    failure = IgnoreFailures([&] { response["result"] = ToJson(control_.Invoke(member, values)); });
    response["args"] = WriteArguments(member, values);
  } catch (const AutomationError& error) {
    failure = error;
  }
  response["messages"] = messages_.messages();
  if (failure) {
    response["error"] = {{"number", failure->number()},
                         {"description", ToUtf8(failure->description())}};
  }
  return response.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace kestrelon::commandline
