#include "desktop/outlook/store/Subfolders.h"

#include <fcntl.h>

#include <algorithm>

#include "desktop/outlook/store/ItemFile.h"

namespace kestrelon::desktop {
namespace fs = std::filesystem;

bool IsFolder(const fs::path& path) {
  std::error_code error;
  return fs::is_directory(path, error) && !IsOthersLink(AT_FDCWD, path.native());
}

std::vector<std::string> FolderNamesIn(const fs::path& path) {
  std::vector<std::string> names;
  std::error_code error;
  for (fs::directory_iterator entry(path, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string name = entry->path().filename();
    if (!name.starts_with('.') && entry->is_directory(error) && IsFolder(entry->path())) {
      names.push_back(name);
    }
  }
  std::ranges::sort(names);
  return names;
}

}  // namespace kestrelon::desktop
