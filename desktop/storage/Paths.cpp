#include "desktop/storage/Paths.h"

#include <algorithm>

#include "automation/AutomationError.h"

namespace kestrelon::desktop {

std::filesystem::path PathFromText(StringView text) {
  if (text.find(u'\0') != StringView::npos) {
    throw AutomationError(kInvalidProcedureCall, u"A path cannot hold a NUL character");
  }
  std::string path = ToUtf8(text);
  std::replace(path.begin(), path.end(), '\\', '/');
  return path;
}

String TextFromPath(const std::filesystem::path& path) { return FromUtf8(path.native()); }

std::filesystem::path AbsolutePath(const std::filesystem::path& path) {
  std::error_code error;
  std::filesystem::path absolute = std::filesystem::absolute(path, error);
  if (error) throw AutomationError(kPathNotFound);
  return absolute;
}

}  // namespace kestrelon::desktop
