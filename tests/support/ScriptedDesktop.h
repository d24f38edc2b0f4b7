// A desktop for tests: records every automation call in the words of a trace, and answers from a
// script. A call without an answer returns an object named by its line, so that a test scripts only
// the values it is about.
#pragma once

#include <deque>
#include <map>
#include <string>
#include <vector>

#include "platform/Platform.h"

namespace kestrelon::testing {

// Cuts a loop that the behaviour leaves unbounded; no AutomationError, so no member catches it.
struct LoopCut {};

struct ShownMessage {
  String text;
  int32_t flags = 0;
  std::optional<String> title;
  friend bool operator==(const ShownMessage&, const ShownMessage&) = default;
};

class ScriptedDesktop final : public Platform {
 public:
  // The answers of a call, in order; the last one repeats. The line is that of the trace:
  // "Word.Application.Selection.Find.Found", "Word.Application.Documents.Add(\"a.dotx\")".
  void Answer(const std::string& line, std::deque<Value> answers);
  // An object named `path`, whatever led to it ("CreateObject" answers make shorter paths).
  Value NamedObject(const std::string& path);
  // The name of an object of this desktop, whatever it has been led through.
  std::string PathOf(const Object& object);
  // The calls whose line starts with `prefix` fail.
  void Fail(const std::string& prefix, AutomationError error);
  void StopFailing() { failures_.clear(); }
  // The call with this number (from 1) fails with error 1234 "Injected"; 0 for none.
  int fail_at = 0;
  std::string failed_line;  // the call that did
  // Throws LoopCut at this many calls.
  int cut_at = 100'000;
  bool is_cut() const { return static_cast<int>(log.size()) >= cut_at; }
  // How every desktop hands out its objects: as they are, unless a program leads them elsewhere.
  using HandOver = Value (*)(ScriptedDesktop& desktop, const DispatchPointer& object);
  static HandOver hand_over;

  std::vector<std::string> log;
  std::vector<ShownMessage> messages;
  std::deque<int32_t> buttons;
  std::string order_of_date = "1";
  std::string currency = "\xA3";
  std::string temp_path = "/tmp/";
  bool locale_fails = false;
  uint32_t os_major_version = 6;
  std::optional<String> guid = u"{01234567-89AB-CDEF-0123-456789ABCDEF}";
  // What the shell answers; what a URL gives, nothing for one that cannot be opened; whether
  // temporary files can be made.
  int32_t shell_result = 33;
  std::optional<std::string> web_page;
  bool temp_file_fails = false;
  Date now = {45000.0 + (13 * 3600 + 5 * 60 + 9) / 86400.0};

  Object CreateObject(StringView prog_id, StringView server) override;
  Object GetRunningObject(StringView prog_id) override;
  int32_t ShowMessageBox(const String& text, int32_t flags,
                         const std::optional<String>& title) override;
  uint32_t UserDefaultLocale() override { return 0x0809; }
  int32_t GetLocaleInfoAnsi(uint32_t locale, uint32_t type, char* buffer, int32_t size) override;
  uint32_t GetTempPathAnsi(uint32_t size, char* buffer) override;
  Date Now() override { return now; }
  FileVersion ComponentVersion() override { return {5, 8, 0, 7}; }
  // Answers `os_major_version`; the key events are lines of the log, "key 44 1 0".
  int32_t GetOsVersion(OsVersionRecord& record) override;
  void SendKeyEvent(uint8_t key_code, uint8_t scan_code, uint32_t flags,
                    uint32_t extra_information) override;
  std::optional<String> CreateGuid() override { return guid; }
  // Lines of the log that cannot be made to fail: "temp file in /tmp/ for Quo", "shell Open a.doc
  // in C:\\", "internet VB OpenUrl", "url http://…", "close 2", "pause 100".
  uint32_t GetTempFileNameAnsi(const char* folder, const char* prefix, uint32_t unique,
                               char* buffer) override;
  SystemHandle GetDesktopWindow() override { return 7; }
  int32_t ShellExecute(SystemHandle window, const String& operation, const String& file,
                       const String& parameters, const String& directory, int32_t show) override;
  SystemHandle OpenInternet(const String& agent, uint32_t access_type) override;
  SystemHandle OpenInternetUrl(SystemHandle connection, const String& url, uint32_t flags) override;
  bool ReadInternetFile(SystemHandle file, char* buffer, uint32_t size,
                        uint32_t& bytes_read) override;
  void CloseInternetHandle(SystemHandle handle) override;
  void Pause(uint32_t milliseconds) override;

  // Records one call and gives its answer.
  Value Perform(const std::string& line);

 private:
  // Nothing for a call that has no answer.
  std::optional<Value> AnswerTo(const std::string& line);
  Object Obtain(const std::string& verb, StringView prog_id, StringView server);

  size_t page_read_ = 0;
  std::map<std::string, std::deque<Value>> answers_;
  std::vector<std::pair<std::string, AutomationError>> failures_;
};

}  // namespace kestrelon::testing
