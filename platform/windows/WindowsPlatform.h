// The control's desktop on Windows: the automation servers registered with COM, and Win32. Used in
// a single-threaded apartment that its maker has entered.
//
// The control's ANSI texts are Windows-1252 whatever the system's code page is; they are converted
// on the way, and what has no place there becomes its nearest character or "?".
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

  // MSXML documents are asked in XPath, whatever their version was made with.
  Object CreateObject(StringView prog_id, StringView server) override;
  Object GetRunningObject(StringView prog_id) override;
  int32_t ShowMessageBox(const String& text, int32_t flags,
                         const std::optional<String>& title) override;
  uint32_t UserDefaultLocale() override;
  int32_t GetLocaleInfoAnsi(uint32_t locale, uint32_t type, char* buffer, int32_t size) override;
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
  int32_t ShellExecute(SystemHandle window, const String& operation, const String& file,
                       const String& parameters, const String& directory, int32_t show) override;
  SystemHandle OpenInternet(const String& agent, uint32_t access_type) override;
  SystemHandle OpenInternetUrl(SystemHandle connection, const String& url, uint32_t flags) override;
  bool ReadInternetFile(SystemHandle file, char* buffer, uint32_t size,
                        uint32_t& bytes_read) override;
  void CloseInternetHandle(SystemHandle handle) override;
  void Pause(uint32_t milliseconds) override;

 private:
  OwnerWindow owner_window_;
};

}  // namespace kestrelon
