// The one interface to a desktop: every service of the operating system that the control uses, and
// the automation servers it reaches by ProgID. A front end makes one Platform and hands it to each
// control; a Platform outlives its controls and is used on one thread at a time.
//
// Operations named after an operating-system call behave as that call does: ANSI buffers, sizes in
// bytes, result codes instead of exceptions. Everything else fails with AutomationError.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "automation/DispatchObject.h"

namespace kestrelon {

// What GetLocaleInfoAnsi is asked for.
constexpr uint32_t kLocaleUserDefault = 0x0400;
constexpr uint32_t kLocaleIdate = 0x0021;      // order of the short date: "0", "1" or "2"
constexpr uint32_t kLocaleScurrency = 0x0014;  // currency symbol

// The component's own version record: the four fields of its file version.
struct FileVersion {
  int32_t major = 0;
  int32_t minor = 0;
  int32_t build = 0;
  int32_t revision = 0;
};

// What GetVersionExA fills in (OSVERSIONINFOA).
struct OsVersionRecord {
  uint32_t size = 0;  // of the system's record in bytes: 148, set before the query
  uint32_t major_version = 0;
  uint32_t minor_version = 0;
  uint32_t build_number = 0;
  uint32_t platform_id = 0;
  std::array<char, 128> service_pack{};  // ANSI, ends with NUL
};

// A window, or something read over the internet, as the system numbers it; 0 is none.
using SystemHandle = uint64_t;

// What OpenInternetUrl is asked for: the server's own answer, never one of the cache.
constexpr uint32_t kInternetReload = 0x80000000;

// A path of the system's ANSI calls with its terminator (MAX_PATH), in bytes.
constexpr size_t kAnsiPathSize = 260;

// The title of a message box that is given none.
constexpr const char16_t* kDefaultMessageTitle = u"KNControl2005";

class Platform {
 public:
  virtual ~Platform() = default;

  // A new object of the server `prog_id`, on the machine `server` when that is not "".
  // Error 429 when the server cannot be created (unknown, not registered, not installed).
  virtual Object CreateObject(StringView prog_id, StringView server = {}) = 0;
  // The running object of `prog_id`; nothing is started. Error 429 when there is none.
  virtual Object GetRunningObject(StringView prog_id) = 0;

  // A modal message box; the number of the button pressed (1 OK, 2 Cancel, 3 Abort, 4 Retry,
  // 5 Ignore, 6 Yes, 7 No). An absent title is kDefaultMessageTitle.
  virtual int32_t ShowMessageBox(const String& text, int32_t flags,
                                 const std::optional<String>& title) = 0;

  // GetUserDefaultLCID.
  virtual uint32_t UserDefaultLocale() = 0;
  // GetLocaleInfoA: bytes written with the terminator, 0 on failure; with `size` 0, bytes needed.
  virtual int32_t GetLocaleInfoAnsi(uint32_t locale, uint32_t type, char* buffer, int32_t size) = 0;
  // GetTempPathA: the length of the path with its trailing separator; when that does not fit, the
  // size needed, and the buffer is left alone. 0 on failure.
  virtual uint32_t GetTempPathAnsi(uint32_t size, char* buffer) = 0;
  // The local date and time, to the second.
  virtual Date Now() = 0;
  virtual FileVersion ComponentVersion() = 0;
  // GetVersionExA: not 0 on success.
  virtual int32_t GetOsVersion(OsVersionRecord& record) = 0;
  // keybd_event: one key event as if from the keyboard. Flag 2 is key up.
  virtual void SendKeyEvent(uint8_t key_code, uint8_t scan_code, uint32_t flags,
                            uint32_t extra_information) = 0;
  // CoCreateGuid and StringFromCLSID: a new GUID in its registry form, "{" + 8-4-4-4-12 upper-case
  // hexadecimal digits + "}"; nothing on failure.
  virtual std::optional<String> CreateGuid() = 0;
  // GetTempFileNameA: with `unique` 0, makes a new, empty file in `folder`, which may end with a
  // separator. Its name is the first three characters of `prefix`, a number in hexadecimal digits
  // and ".tmp". Any other `unique` is the number, of 16 bits, and no file is made. `buffer` has
  // kAnsiPathSize bytes and takes the path. The number; 0 on failure, as for a prefix with
  // characters that no file name may have.
  virtual uint32_t GetTempFileNameAnsi(const char* folder, const char* prefix, uint32_t unique,
                                       char* buffer) = 0;

  virtual SystemHandle GetDesktopWindow() = 0;
  // ShellExecuteA: hands `file` to the program that its type is associated with. Over 32 on
  // success, else the system's code for what went wrong (2 file not found, 5 access denied, …).
  // `show` is 1 for a normal window.
  virtual int32_t ShellExecute(SystemHandle window, const String& operation, const String& file,
                               const String& parameters, const String& directory, int32_t show) = 0;

  // InternetOpenA without proxy, bypass and flags: a connection with the name `agent`; access type
  // 0 goes the way that the user has set up. 0 on failure.
  virtual SystemHandle OpenInternet(const String& agent, uint32_t access_type) = 0;
  // InternetOpenUrlA without headers: asks for `url`; the answer can be read from the handle. 0 on
  // failure.
  virtual SystemHandle OpenInternetUrl(SystemHandle connection, const String& url,
                                       uint32_t flags) = 0;
  // InternetReadFile: `bytes_read` is 0 at the end, and where the connection broke.
  virtual bool ReadInternetFile(SystemHandle file, char* buffer, uint32_t size,
                                uint32_t& bytes_read) = 0;
  // InternetCloseHandle.
  virtual void CloseInternetHandle(SystemHandle handle) = 0;

  // Lets the desktop's programs work for so many milliseconds.
  virtual void Pause(uint32_t milliseconds) = 0;
};

}  // namespace kestrelon
