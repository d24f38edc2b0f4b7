#include "desktop/outlook/store/Mailbox.h"

#include <sys/random.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstdlib>

#include "desktop/storage/AtomicFile.h"
#include "desktop/storage/Paths.h"

namespace kestrelon::desktop {
namespace fs = std::filesystem;
namespace {

fs::path FromEnvironment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? "" : value;
}

}  // namespace

fs::path MailboxFolder() {
  const fs::path chosen = FromEnvironment("KESTRELON_MAILBOX");
  if (!chosen.empty()) return AbsolutePath(chosen);
  fs::path data = FromEnvironment("XDG_DATA_HOME");
  if (!data.is_absolute()) {
    const fs::path home = FromEnvironment("HOME");
    if (!home.is_absolute()) {
      throw AutomationError(
          kPathNotFound, u"There is no place for the mailbox: set KESTRELON_MAILBOX to a folder");
    }
    data = home / ".local/share";
  }
  return data / "kestrelon/mailbox";
}

void MakeFolder(const fs::path& folder) {
  std::error_code error;
  if (fs::is_directory(folder, error)) return;
  if (folder.has_parent_path() && folder.parent_path() != folder) {
    MakeFolder(folder.parent_path());
  }
  constexpr mode_t kForTheUserAlone = 0700;
  if (mkdir(folder.c_str(), kForTheUserAlone) != 0 && errno != EEXIST) {
    throw FileError(errno, folder);
  }
}

AutomationError SavingError(const AutomationError& error, StringView subject,
                            const fs::path& folder) {
  const StringView remedy =
      error.number() == kDiskFull ? u"Make room there" : u"Make that folder writable";
  return AutomationError(error.number(), error.description() + u". " + String(subject) +
                                             u" cannot be saved in \"" + TextFromPath(folder) +
                                             u"\". " + String(remedy) +
                                             u", or set "
                                             u"KESTRELON_MAILBOX to another folder.");
}

String NewEntryId() {
  std::array<unsigned char, 16> bytes;
  if (getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
    throw FileError(errno, "random numbers");
  }
  constexpr StringView kDigits = u"0123456789ABCDEF";
  String id;
  for (const unsigned char byte : bytes) {
    id += kDigits[byte >> 4];
    id += kDigits[byte & 15];
  }
  return id;
}

}  // namespace kestrelon::desktop
