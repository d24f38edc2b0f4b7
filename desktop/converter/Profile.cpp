#include "desktop/converter/Profile.h"

#include <cstdlib>
#include <string>

#include "desktop/converter/WorkerProtocol.h"
#include "desktop/storage/AtomicFile.h"

namespace kestrelon::desktop {
namespace fs = std::filesystem;
namespace {

struct Setting {
  const char* path;  // below /org.openoffice.
  const char* name;
  const char* value;
};

constexpr Setting kSettings[] = {
    {"Office.Common/Security/Scripting", "MacroSecurityLevel", "3"},
    {"Office.Common/Security/Scripting", "DisableMacrosExecution", "true"},
    // Trusted locations are none by default, so this refuses every link of every document.
    {"Office.Common/Security/Scripting", "BlockUntrustedRefererLinks", "true"},
    {"Office.Common/Misc", "UseLocking", "false"},
    {"Office.Common/Misc", "UseDocumentSystemFileLocking", "false"},
    {"Office.Common/Misc", "UseDocumentOOoLockFile", "false"},
    {"Office.Java/VirtualMachine", "Enable", "false"},
    {"Office.Recovery/AutoSave", "Enabled", "false"},
    {"Office.Recovery/RecoveryInfo", "Enabled", "false"},
    {"Office.Linguistic/SpellChecking", "IsSpellAuto", "false"},  // nobody sees the wavy lines
    // "Never", which the two applications count differently.
    {"Office.Writer/Content/Update", "Link", "2"},
    {"Office.Calc/Content/Update", "Link", "1"},
};

// Calc's formula bar, under the number of its window. It is not needed, and the packages without a
// user interface lack the file that describes it: no workbook could be loaded.
constexpr char kHiddenFormulaBar[] =
    "<item oor:path=\"/org.openoffice.Office.Views/Windows\"><node oor:name=\"26100\" "
    "oor:op=\"replace\"><prop oor:name=\"Visible\" oor:op=\"fuse\"><value>false</value></prop>"
    "</node></item>\n";

// Pages are loaded for paper. The view for screens, the usual one for them, lays them out anew with
// each page of paper that is done: a report of a hundred pages took minutes.
constexpr char kPagesForPaper[] =
    "<item oor:path=\"/org.openoffice.TypeDetection.Types/Types/org.openoffice.TypeDetection.Types:"
    "Type['generic_HTML']\"><prop oor:name=\"PreferredFilter\" oor:op=\"fuse\"><value>"
    "HTML (StarWriter)</value></prop></item>\n";

std::string Registry() {
  std::string registry =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<oor:items xmlns:oor=\"http://openoffice.org/2001/registry\">\n";
  for (const Setting& setting : kSettings) {
    registry += std::string("<item oor:path=\"/org.openoffice.") + setting.path +
                "\"><prop oor:name=\"" + setting.name + "\" oor:op=\"fuse\"><value>" +
                setting.value + "</value></prop></item>\n";
  }
  return registry + kHiddenFormulaBar + kPagesForPaper + "</oor:items>\n";
}

void LinkIfPresent(const fs::path& target, const fs::path& link) {
  std::error_code ignored;
  if (!fs::is_directory(target, ignored)) return;
  fs::create_directories(link.parent_path(), ignored);
  fs::create_directory_symlink(target, link, ignored);
}

void LinkUserFonts(const fs::path& home) {
  const char* users_home = std::getenv("HOME");
  if (users_home == nullptr || *users_home != '/') return;
  LinkIfPresent(fs::path(users_home) / ".fonts", home / ".fonts");
  const char* data = std::getenv("XDG_DATA_HOME");
  const fs::path data_home =
      data != nullptr && *data == '/' ? fs::path(data) : fs::path(users_home) / ".local/share";
  LinkIfPresent(data_home / "fonts", home / ".local/share/fonts");
}

}  // namespace

void CreateProfile(const fs::path& folder) {
  std::error_code error;
  const fs::path user = folder / kProfileFolder / "user";
  for (const fs::path& path :
       {folder / kHomeFolder, folder / kJobFolder, folder / kScratchFolder, user}) {
    fs::create_directories(path, error);
    if (error) throw FileError(error.value(), path);
  }
  LinkUserFonts(folder / kHomeFolder);
  WriteFileAtomically(user / "registrymodifications.xcu", Registry());
}

}  // namespace kestrelon::desktop
