#include "desktop/opener/Association.h"

#include <gio/gio.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <memory>

namespace kestrelon::desktop {

std::string TypeOfFile(const std::string& path) {
  std::error_code error;
  if (std::filesystem::is_directory(path, error)) return "inode/directory";
  // Of what cannot be read, the name alone is looked at; opening a pipe would wait for its writer.
  std::array<char, 4096> start{};
  std::streamsize length = 0;
  if (std::filesystem::is_regular_file(path, error)) {
    std::ifstream file(path, std::ios::binary);
    file.read(start.data(), start.size());
    length = file.gcount();
  }
  const std::unique_ptr<char, decltype(&g_free)> type(
      g_content_type_guess(path.c_str(), reinterpret_cast<const guchar*>(start.data()),
                           static_cast<gsize>(length), nullptr),
      &g_free);
  return type.get();
}

bool IsTypeAssociated(const std::string& type) {
  GAppInfo* program = g_app_info_get_default_for_type(type.c_str(), FALSE);
  if (program == nullptr) return false;
  g_object_unref(program);
  return true;
}

}  // namespace kestrelon::desktop
