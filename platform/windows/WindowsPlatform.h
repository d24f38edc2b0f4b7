// The control's desktop on Windows: the automation servers registered with COM, and Win32. Used in
// a single-threaded apartment that its maker has entered.
//
// The control's ANSI texts are Windows-1252 whatever the system's code page is (SystemTexts.h), so
// the system is asked for wide texts, and what has no place there becomes its nearest character or
// "?". Texts of the control reach the ANSI functions where the system's code page has an exact form
// of them, and the wide ones otherwise.
#pragma once

#include <functional>

#include "platform/Platform.h"
#include "platform/windows/Win32.h"

namespace kestrelon {

// The window that message boxes belong to; null for none.
using OwnerWindow = std::function<HWND()>;

class WindowsPlatform final : public Platform {
 public:
  explicit WindowsPlatform(OwnerWindow owner_window) : owner_window_(std::move(owner_window)) {}

  // XML documents are asked in XPath, whatever their version begins with. A server named as this
  // machine is asked for over the network first, as any other, and directly where that fails. Error
  // 462 when the machine cannot be reached, 430 for an object that cannot be called late-bound;
  // failures beyond creating, such as an access denied there, keep the system's numbers.
  Object CreateObject(StringView prog_id, StringView server) override;
  Object GetRunningObject(StringView prog_id) override;
  // The owner is disabled meanwhile, so that the page cannot be used; its scripts may run. -1 when
  // there is no desktop to show the box on, 0 for flags that the system does not take.
  int32_t ShowMessageBox(const String& text, int32_t flags,
                         const std::optional<String>& title) override;
  uint32_t UserDefaultLocale() override;
  int32_t GetLocaleInfoAnsi(uint32_t locale, uint32_t type, char* buffer, int32_t size) override;
  // A folder that Windows-1252 cannot name goes by its short name. Where the volume keeps none, the
  // nearest characters name a folder that need not be there.
  uint32_t GetTempPathAnsi(uint32_t size, char* buffer) override;
  Date Now() override;
  // That of the module's version resource; all 0 when it has none.
  FileVersion ComponentVersion() override;
  int32_t GetOsVersion(OsVersionRecord& record) override;
  void SendKeyEvent(uint8_t key_code, uint8_t scan_code, uint32_t flags,
                    uint32_t extra_information) override;
  std::optional<String> CreateGuid() override;
  uint32_t GetTempFileNameAnsi(const char* folder, const char* prefix, uint32_t unique,
                               char* buffer) override;
  SystemHandle GetDesktopWindow() override;
  // 2 for a name with a NUL, which no file has.
  int32_t ShellExecute(SystemHandle window, const String& operation, const String& file,
                       const String& parameters, const String& directory, int32_t show) override;
  SystemHandle OpenInternet(const String& agent, uint32_t access_type) override;
  SystemHandle OpenInternetUrl(SystemHandle connection, const String& url, uint32_t flags) override;
  bool ReadInternetFile(SystemHandle file, char* buffer, uint32_t size,
                        uint32_t& bytes_read) override;
  void CloseInternetHandle(SystemHandle handle) override;
  // Other programs' messages to windows of this thread are answered meanwhile, since a program that
  // tells all windows of something waits for each. What is posted stays for later: the page must
  // not call while its call is under way.
  void Pause(uint32_t milliseconds) override;

 private:
  OwnerWindow owner_window_;
};

}  // namespace kestrelon
