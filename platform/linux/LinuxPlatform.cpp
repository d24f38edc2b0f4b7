#include "platform/linux/LinuxPlatform.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <ctime>
#include <filesystem>

#include "desktop/filesystem/FileSystemObject.h"
#include "desktop/outlook/objects/OutlookApplication.h"
#include "desktop/storage/AtomicFile.h"
#include "desktop/word/WordApplication.h"
#include "desktop/xml/XmlDocuments.h"
#include "platform/linux/UserLocale.h"

namespace kestrelon {
namespace {

struct Server {
  StringView prog_id;
  Object (*create)();
};

constexpr std::array<Server, 8> kServers = {{
    {u"Word.Application", &desktop::CreateWordApplication},
    {u"Outlook.Application", &desktop::CreateOutlookApplication},
    {u"Scripting.FileSystemObject", &desktop::CreateFileSystemObject},
    {u"MSXML2.DOMDocument", &desktop::CreateXmlDocument},
    {u"MSXML2.DOMDocument.3.0", &desktop::CreateXmlDocument},
    {u"MSXML2.DOMDocument.4.0", &desktop::CreateXmlDocument},
    {u"MSXML2.DOMDocument.6.0", &desktop::CreateXmlDocument},
    {u"Microsoft.XMLDOM", &desktop::CreateXmlDocument},
}};

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
  throw AutomationError(kCannotCreateObject);
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
    text = ShortDateOrder();
  } else if (type == kLocaleScurrency) {
    text = ToAnsi(CurrencySymbol());
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
  // A path that ANSI text cannot name would lead nowhere.
  const bool is_ansi = FromAnsi(ToAnsi(name)) == name;
  temp_folder_.emplace("kestrelon-", is_ansi ? shared : std::filesystem::path("/tmp"));
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

int32_t LinuxPlatform::GetOsVersion(OsVersionRecord&) { throw AutomationError(kNotImplemented); }

void LinuxPlatform::SendKeyEvent(uint8_t, uint8_t, uint32_t, uint32_t) {
  throw AutomationError(kNotImplemented);
}

std::optional<String> LinuxPlatform::CreateGuid() { throw AutomationError(kNotImplemented); }

}  // namespace kestrelon
