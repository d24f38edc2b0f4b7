#include "tests/support/ScriptedDesktop.h"

#include <algorithm>
#include <cstring>

#include "automation/TracingObject.h"

namespace kestrelon::testing {
namespace {

class ScriptedObject final : public DispatchObject {
 public:
  ScriptedObject(ScriptedDesktop& desktop, std::string path)
      : desktop_(desktop), path_(std::move(path)) {}

  Value Invoke(InvokeKind kind, StringView member, const Arguments& arguments) override {
    std::string line = path_ + (member.empty() ? "" : "." + ToUtf8(member));
    if (kind == InvokeKind::kPut) {
      const std::string list = DescribeCall("", arguments);
      line += " = " + list.substr(1, list.size() - 2);
    } else if (kind == InvokeKind::kCall) {
      line = DescribeCall(line, arguments);
    }
    const Value answer = desktop_.Perform(line);
    // An object that nobody scripted reads as an empty text; one that is asked for an item does
    // not.
    const bool is_read = member.empty() && arguments.positional.empty();
    return is_read && answer.IsObject() ? Value(u"") : answer;
  }
  // A collection is walked over "Each" of its path: an array of answers.
  std::unique_ptr<Enumerator> Enumerate() override {
    const Value elements = desktop_.Perform(path_ + ".Each");
    if (!elements.IsArray()) throw AutomationError(kNotACollection);
    return std::make_unique<VectorEnumerator>(elements.AsArray());
  }
  String TypeName() const override { return FromUtf8(path_); }

 private:
  ScriptedDesktop& desktop_;
  std::string path_;
};

}  // namespace

ScriptedDesktop::HandOver ScriptedDesktop::hand_over =
    [](ScriptedDesktop& /*desktop*/, const DispatchPointer& object) { return Value(object); };

void ScriptedDesktop::Answer(const std::string& line, std::deque<Value> answers) {
  answers_[line] = std::move(answers);
}

Value ScriptedDesktop::NamedObject(const std::string& path) {
  return hand_over(*this, std::make_shared<ScriptedObject>(*this, path));
}

std::string ScriptedDesktop::PathOf(const Object& object) {
  object.Call(u"PathOf");
  const std::string line = log.back();
  log.pop_back();
  return line.substr(0, line.size() - std::strlen(".PathOf()"));
}

void ScriptedDesktop::Fail(const std::string& prefix, AutomationError error) {
  failures_.emplace_back(prefix, std::move(error));
}

Value ScriptedDesktop::Perform(const std::string& line) {
  const std::optional<Value> answer = AnswerTo(line);
  return answer ? *answer : NamedObject(line);
}

std::optional<Value> ScriptedDesktop::AnswerTo(const std::string& line) {
  log.push_back(line);
  if (is_cut()) throw LoopCut();
  if (static_cast<int>(log.size()) == fail_at) {
    failed_line = line;
    throw AutomationError(1234, u"Injected");
  }
  for (const auto& [prefix, error] : failures_) {
    if (line.starts_with(prefix)) throw error;
  }
  const auto found = answers_.find(line);
  if (found == answers_.end()) return std::nullopt;
  const Value answer = found->second.front();
  if (found->second.size() > 1) found->second.pop_front();
  return answer;
}

Object ScriptedDesktop::Obtain(const std::string& verb, StringView prog_id, StringView server) {
  const std::string name = ToUtf8(prog_id);
  const std::optional<Value> answer =
      AnswerTo(verb + " " + name + (server.empty() ? "" : " on " + ToUtf8(server)));
  // An unscripted server is known by its ProgID.
  return answer ? answer->ToObject() : NamedObject(name).ToObject();
}

Object ScriptedDesktop::CreateObject(StringView prog_id, StringView server) {
  return Obtain("create", prog_id, server);
}

Object ScriptedDesktop::GetRunningObject(StringView prog_id) {
  return Obtain("attach", prog_id, {});
}

int32_t ScriptedDesktop::ShowMessageBox(const String& text, int32_t flags,
                                        const std::optional<String>& title) {
  messages.push_back({text, flags, title});
  if (buttons.empty()) return 1;
  const int32_t button = buttons.front();
  buttons.pop_front();
  return button;
}

int32_t ScriptedDesktop::GetLocaleInfoAnsi(uint32_t /*locale*/, uint32_t type, char* buffer,
                                           int32_t size) {
  if (locale_fails) return 0;
  const std::string& text = type == 0x21 ? order_of_date : currency;
  if (size == 0) return static_cast<int32_t>(text.size()) + 1;
  std::memcpy(buffer, text.c_str(), std::min(text.size() + 1, static_cast<size_t>(size)));
  return size;
}

uint32_t ScriptedDesktop::GetTempPathAnsi(uint32_t size, char* buffer) {
  if (temp_path.size() >= size) return static_cast<uint32_t>(temp_path.size()) + 1;
  std::memcpy(buffer, temp_path.c_str(), temp_path.size() + 1);
  return static_cast<uint32_t>(temp_path.size());
}

int32_t ScriptedDesktop::GetOsVersion(OsVersionRecord& record) {
  record.major_version = os_major_version;
  return 1;
}

void ScriptedDesktop::SendKeyEvent(uint8_t key_code, uint8_t scan_code, uint32_t flags,
                                   uint32_t /*extra_information*/) {
  Perform("key " + std::to_string(key_code) + " " + std::to_string(scan_code) + " " +
          std::to_string(flags));
}

uint32_t ScriptedDesktop::GetTempFileNameAnsi(const char* folder, const char* prefix,
                                              uint32_t /*unique*/, char* buffer) {
  log.push_back(std::string("temp file in ") + folder + " for " + prefix);
  if (temp_file_fails) return 0;
  std::strcpy(buffer, (folder + std::string(prefix).substr(0, 3) + "1A2B.tmp").c_str());
  return 0x1A2B;
}

int32_t ScriptedDesktop::ShellExecute(SystemHandle /*window*/, const String& operation,
                                      const String& file, const String& parameters,
                                      const String& directory, int32_t /*show*/) {
  log.push_back("shell " + ToUtf8(operation + u" " + file + parameters + u" in " + directory));
  return shell_result;
}

SystemHandle ScriptedDesktop::OpenInternet(const String& agent, uint32_t /*access_type*/) {
  log.push_back("internet " + ToUtf8(agent));
  return 1;
}

SystemHandle ScriptedDesktop::OpenInternetUrl(SystemHandle /*connection*/, const String& url,
                                              uint32_t /*flags*/) {
  log.push_back("url " + ToUtf8(url));
  page_read_ = 0;
  return web_page ? 2 : 0;
}

bool ScriptedDesktop::ReadInternetFile(SystemHandle /*file*/, char* buffer, uint32_t size,
                                       uint32_t& bytes_read) {
  bytes_read = static_cast<uint32_t>(web_page->copy(buffer, size, page_read_));
  page_read_ += bytes_read;
  return true;
}

void ScriptedDesktop::CloseInternetHandle(SystemHandle handle) {
  log.push_back("close " + std::to_string(handle));
}

void ScriptedDesktop::Pause(uint32_t milliseconds) {
  Perform("pause " + std::to_string(milliseconds));
}

}  // namespace kestrelon::testing
