#include "desktop/storage/Paths.h"

#include <algorithm>

namespace kestrelon::desktop {

std::filesystem::path PathFromText(StringView text) {
  std::string path = ToUtf8(text);
  std::replace(path.begin(), path.end(), '\\', '/');
  return path;
}

String TextFromPath(const std::filesystem::path& path) { return FromUtf8(path.native()); }

}  // namespace kestrelon::desktop
