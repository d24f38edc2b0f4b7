// The control's desktop on Linux: the automation servers of desktop/, and the system's services.
//
// The locale is that of the environment (LC_ALL, LC_TIME, LC_MONETARY, LANG). Texts of ANSI calls
// are Windows-1252; characters that it lacks become "?". The temporary folder is a private one in
// $TMPDIR, or in /tmp where the name of that has such a character or nothing can be written there,
// and goes with the platform.
#pragma once

#include <functional>
#include <map>

#include "desktop/storage/AtomicFile.h"
#include "platform/Platform.h"

namespace kestrelon {

// One message box: takes it to the user and returns the number of the button pressed.
using MessageBoxHandler =
    std::function<int32_t(const String& text, int32_t flags, const std::optional<String>& title)>;

class LinuxPlatform final : public Platform {
 public:
  explicit LinuxPlatform(MessageBoxHandler show_message_box);

  Object CreateObject(StringView prog_id, StringView server) override;
  Object GetRunningObject(StringView prog_id) override;
  int32_t ShowMessageBox(const String& text, int32_t flags,
                         const std::optional<String>& title) override;
  uint32_t UserDefaultLocale() override;
  int32_t GetLocaleInfoAnsi(uint32_t locale, uint32_t type, char* buffer, int32_t size) override;
  uint32_t GetTempPathAnsi(uint32_t size, char* buffer) override;
  Date Now() override;
  FileVersion ComponentVersion() override;
  // Windows' record has no place for this system's version; it gets the kernel's numbers.
  int32_t GetOsVersion(OsVersionRecord& record) override;
  // Print Screen goes to the program $KESTRELON_SCREENSHOT, which is to put a picture of the screen
  // on the clipboard, and is waited for, at most two seconds; without that variable, and for any
  // other key, nothing happens.
  void SendKeyEvent(uint8_t key_code, uint8_t scan_code, uint32_t flags,
                    uint32_t extra_information) override;
  std::optional<String> CreateGuid() override;
  uint32_t GetTempFileNameAnsi(const char* folder, const char* prefix, uint32_t unique,
                               char* buffer) override;
  SystemHandle GetDesktopWindow() override { return 1; }
  // Always opens, in the program that the user's desktop has for it (desktop/opener); a link goes
  // there as it is. 2 for a missing file, 3 for a missing folder, 5 where it may not be read, 27
  // when the program cannot be started, 31 when there is none. What is not absolute is looked for
  // in the current folder.
  int32_t ShellExecute(SystemHandle window, const String& operation, const String& file,
                       const String& parameters, const String& directory, int32_t show) override;
  SystemHandle OpenInternet(const String& agent, uint32_t access_type) override;
  // The whole answer is read here; one over 64 MiB is cut, and one that breaks off gives what came.
  SystemHandle OpenInternetUrl(SystemHandle connection, const String& url, uint32_t flags) override;
  bool ReadInternetFile(SystemHandle file, char* buffer, uint32_t size,
                        uint32_t& bytes_read) override;
  void CloseInternetHandle(SystemHandle handle) override;
  void Pause(uint32_t milliseconds) override;

 private:
  struct InternetFile {
    std::string content;
    size_t next = 0;  // position in it
  };

  void MakeTempFolder();

  SystemHandle last_internet_handle_ = 0;
  std::map<SystemHandle, std::string> internet_agents_;
  std::map<SystemHandle, InternetFile> internet_files_;
  std::optional<desktop::PrivateFolder> temp_folder_;
  MessageBoxHandler show_message_box_;
};

}  // namespace kestrelon
