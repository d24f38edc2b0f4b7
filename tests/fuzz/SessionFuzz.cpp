// The session's reader: whatever a line holds, the answer is one line of JSON, and nothing else is
// thrown. Only the reading is of interest, so no desktop stands behind it.

#include <cstdint>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <string_view>

#include "frontends/commandline/Session.h"

namespace {

using namespace kestrelon;

class NoDesktop final : public Platform {
 public:
  explicit NoDesktop(commandline::MessageLog& messages) : messages_(messages) {}
  Object CreateObject(StringView, StringView) override {
    throw AutomationError(kCannotCreateObject);
  }
  Object GetRunningObject(StringView) override { throw AutomationError(kCannotCreateObject); }
  int32_t ShowMessageBox(const String& text, int32_t flags,
                         const std::optional<String>& title) override {
    return messages_.Show(text, flags, title);
  }
  uint32_t UserDefaultLocale() override { return 0; }
  int32_t GetLocaleInfoAnsi(uint32_t, uint32_t, char*, int32_t) override { return 0; }
  uint32_t GetTempPathAnsi(uint32_t, char*) override { return 0; }
  Date Now() override { return {}; }
  FileVersion ComponentVersion() override { return {}; }
  int32_t GetOsVersion(OsVersionRecord&) override { return 0; }
  void SendKeyEvent(uint8_t, uint8_t, uint32_t, uint32_t) override {}
  std::optional<String> CreateGuid() override { return std::nullopt; }
  uint32_t GetTempFileNameAnsi(const char*, const char*, uint32_t, char*) override { return 0; }
  SystemHandle GetDesktopWindow() override { return 0; }
  int32_t ShellExecute(SystemHandle, const String&, const String&, const String&, const String&,
                       int32_t) override {
    return 0;
  }
  SystemHandle OpenInternet(const String&, uint32_t) override { return 0; }
  SystemHandle OpenInternetUrl(SystemHandle, const String&, uint32_t) override { return 0; }
  bool ReadInternetFile(SystemHandle, char*, uint32_t, uint32_t&) override { return false; }
  void CloseInternetHandle(SystemHandle) override {}
  void Pause(uint32_t) override {}

 private:
  commandline::MessageLog& messages_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view line(reinterpret_cast<const char*>(data), size);
  // A request may name any file of the machine; a fuzzer must not read them.
  if (line.find("file") != std::string_view::npos) return 0;
  commandline::MessageLog messages;
  NoDesktop desktop(messages);
  commandline::Session session(desktop, messages);
  const std::string answer = session.Answer(line);
  const auto json = nlohmann::json::parse(answer, nullptr, false);
  if (json.is_discarded() || !json.contains("messages")) std::abort();
  if (answer.find('\n') != std::string::npos) std::abort();
  return 0;
}
