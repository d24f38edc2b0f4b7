#include "platform/linux/LinuxPlatform.h"

#include <sys/random.h>
#include <sys/utsname.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <thread>

#include "desktop/acrobat/Acrobat.h"
#include "desktop/excel/ExcelApplication.h"
#include "desktop/filesystem/FileSystemObject.h"
#include "desktop/http/HttpRequest.h"
#include "desktop/locale/UserLocale.h"
#include "desktop/opener/Opener.h"
#include "desktop/outlook/objects/OutlookApplication.h"
#include "desktop/storage/AtomicFile.h"
#include "desktop/tapi/Dialer.h"
#include "desktop/tapi/Tapi.h"
#include "desktop/word/WordApplication.h"
#include "desktop/xml/XmlDocuments.h"

namespace kestrelon {
namespace {

struct Server {
  StringView prog_id;
  Object (*create)();
};

constexpr std::array<Server, 17> kServers = {{
    {u"Word.Application", &desktop::CreateWordApplication},
    {u"Outlook.Application", &desktop::CreateOutlookApplication},
    {u"Excel.Application", &desktop::CreateExcelApplication},
    {u"AcroExch.App", &desktop::CreateAcrobatApplication},
    {u"AcroExch.AVDoc", &desktop::CreateAcrobatDocument},
    {u"TAPI.TAPI", &desktop::CreateTapi},
    {u"Kestrelon.Dialer", &desktop::CreateLinkDialer},
    {u"MSXML2.XMLHTTP", &desktop::CreateHttpRequest},
    {u"MSXML2.XMLHTTP.3.0", &desktop::CreateHttpRequest},
    {u"MSXML2.XMLHTTP.6.0", &desktop::CreateHttpRequest},
    {u"Microsoft.XMLHTTP", &desktop::CreateHttpRequest},
    {u"Scripting.FileSystemObject", &desktop::CreateFileSystemObject},
    {u"MSXML2.DOMDocument", &desktop::CreateXmlDocument},
    {u"MSXML2.DOMDocument.3.0", &desktop::CreateXmlDocument},
    {u"MSXML2.DOMDocument.4.0", &desktop::CreateXmlDocument},
    {u"MSXML2.DOMDocument.6.0", &desktop::CreateXmlDocument},
    {u"Microsoft.XMLDOM", &desktop::CreateXmlDocument},
}};

constexpr uint32_t kVersionRecordSize = 148;
constexpr uint8_t kPrintScreenKey = 44;
constexpr uint32_t kKeyUp = 2;
// The picture is to be taken before the mail that it goes into covers the screen; a program that
// stays to hold the clipboard does not end at all. In milliseconds.
constexpr int kScreenshotPatience = 2000;

// "6.1.0-18-amd64" is 6, 1 and 0; a number that is not there is 0.
std::array<uint32_t, 3> NumbersOfRelease(const char* release) {
  std::array<uint32_t, 3> numbers{};
  std::sscanf(release, "%" SCNu32 ".%" SCNu32 ".%" SCNu32, &numbers[0], &numbers[1], &numbers[2]);
  return numbers;
}

// The servers are on this machine, which a script may also name.
bool IsThisMachine(StringView server) {
  return server.empty() || server == u"." || server == u"127.0.0.1" || server == u"::1" ||
         EqualIgnoringCase(server, u"localhost");
}

}  // namespace

LinuxPlatform::LinuxPlatform(MessageBoxHandler show_message_box)
    : show_message_box_(std::move(show_message_box)) {}

Object LinuxPlatform::CreateObject(StringView prog_id, StringView server) {
  if (!IsThisMachine(server)) throw AutomationError(kServerUnavailable);
  for (const Server& entry : kServers) {
    if (EqualIgnoringCase(entry.prog_id, prog_id)) return entry.create();
  }
  return desktop::CreateConfiguredDialer(prog_id);
}

Object LinuxPlatform::GetRunningObject(StringView prog_id) {
  if (EqualIgnoringCase(prog_id, u"Outlook.Application")) {
    const Object running = desktop::RunningOutlookApplication();
    if (running) return running;
  }
  throw AutomationError(kCannotCreateObject);
}

int32_t LinuxPlatform::ShowMessageBox(const String& text, int32_t flags,
                                      const std::optional<String>& title) {
  return show_message_box_(text, flags, title);
}

uint32_t LinuxPlatform::UserDefaultLocale() { return kLocaleUserDefault; }

int32_t LinuxPlatform::GetLocaleInfoAnsi(uint32_t locale, uint32_t type, char* buffer,
                                         int32_t size) {
  if (locale != kLocaleUserDefault) return 0;
  std::string text;
  if (type == kLocaleIdate) {
    text = desktop::ShortDateOrder();
  } else if (type == kLocaleScurrency) {
    text = ToAnsi(desktop::CurrencySymbol());
  } else {
    return 0;
  }
  const auto needed = static_cast<int32_t>(text.size() + 1);
  if (size == 0) return needed;
  if (size < needed) return 0;
  std::memcpy(buffer, text.c_str(), text.size() + 1);
  return needed;
}

// Members put files of fixed names into the temporary folder. In a shared one, another user's link
// or another page's letter could stand under that name; so each platform has a folder of its own.
void LinuxPlatform::MakeTempFolder() {
  const std::filesystem::path shared = desktop::TempFolder();
  const String name = FromUtf8(shared.string());
  // A path that ANSI text cannot name would lead nowhere, and without one that can be written
  // members would put their files into the current folder.
  const bool is_ansi = FromAnsi(ToAnsi(name)) == name;
  if (is_ansi && !IgnoreFailures([&] { temp_folder_.emplace("kestrelon-", shared); })) return;
  temp_folder_.emplace("kestrelon-", std::filesystem::path("/tmp"));
}

uint32_t LinuxPlatform::GetTempPathAnsi(uint32_t size, char* buffer) {
  if (!temp_folder_ && IgnoreFailures([&] { MakeTempFolder(); })) return 0;
  const std::string path = ToAnsi(FromUtf8(temp_folder_->path().string())) + "/";
  const auto length = static_cast<uint32_t>(path.size());
  if (length >= size) return length + 1;
  std::memcpy(buffer, path.c_str(), path.size() + 1);
  return length;
}

Date LinuxPlatform::Now() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  return MakeDate({local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                   local.tm_min, std::min(local.tm_sec, 59)});
}

FileVersion LinuxPlatform::ComponentVersion() {
  return {KESTRELON_VERSION_MAJOR, KESTRELON_VERSION_MINOR, KESTRELON_VERSION_BUILD,
          KESTRELON_VERSION_REVISION};
}

int32_t LinuxPlatform::GetOsVersion(OsVersionRecord& record) {
  utsname system;
  if (record.size != kVersionRecordSize || uname(&system) != 0) return 0;
  const std::array<uint32_t, 3> numbers = NumbersOfRelease(system.release);
  record.major_version = numbers[0];
  record.minor_version = numbers[1];
  record.build_number = numbers[2];
  record.service_pack = {};
  return 1;
}

void LinuxPlatform::SendKeyEvent(uint8_t key_code, uint8_t /*scan_code*/, uint32_t flags,
                                 uint32_t /*extra_information*/) {
  if (key_code != kPrintScreenKey || (flags & kKeyUp) != 0) return;
  const char* program = std::getenv("KESTRELON_SCREENSHOT");
  // As a key on the keyboard, it cannot fail.
  if (program != nullptr && *program != '\0') desktop::RunForUser(program, {}, kScreenshotPatience);
}

std::optional<String> LinuxPlatform::CreateGuid() {
  std::array<uint8_t, 16> bytes;
  if (getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) return {};
  bytes[6] = static_cast<uint8_t>((bytes[6] & 0x0F) | 0x40);  // version 4: random
  bytes[8] = static_cast<uint8_t>((bytes[8] & 0x3F) | 0x80);  // RFC 4122 variant
  std::string text = "{";
  for (size_t i = 0; i < bytes.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02X", unsigned{bytes[i]});
    text += digits;
  }
  return FromUtf8(text + "}");
}

void LinuxPlatform::Pause(uint32_t milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

}  // namespace kestrelon
