#include "desktop/outlook/objects/Showing.h"

#include "desktop/opener/Opener.h"
#include "desktop/storage/AtomicFile.h"
#include "desktop/storage/Paths.h"

namespace kestrelon::desktop {

void ShowFile(const std::filesystem::path& file) {
  if (OpenForUser(file.string()) != OpenOutcome::kCannotStart) return;
  throw AutomationError(kFileNotFound, u"The program that shows \"" + TextFromPath(file) +
                                           u"\" cannot be started. Check KESTRELON_OPENER.");
}

void ShowCopy(const String& title, std::string_view extension, std::string_view content) {
  if (!HasOpener()) return;
  const String name = FileNameFrom(title);
  PrivateFolder folder("kestrelon-item-");
  const std::filesystem::path file =
      folder.path() / (ToUtf8(name.empty() ? u"Untitled" : name) + std::string(extension));
  WriteFileAtomically(file, content);
  ShowFile(file);
  folder.Keep();
}

String FileNameFrom(StringView text) {
  constexpr int64_t kLongestName = 60;  // a name in the widest letters fits a file system's 255
  String name;
  for (const char16_t unit : text) {
    const bool is_plain =
        unit >= u' ' && StringView(u"/\\:*?\"<>|\x7F").find(unit) == StringView::npos;
    name += is_plain ? unit : u' ';
  }
  name = Left(Trim(name), kLongestName);
  name.erase(0, name.find_first_not_of(u". "));
  return Trim(name);
}

}  // namespace kestrelon::desktop
