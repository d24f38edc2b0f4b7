// What GetTempFileNameA makes the name of a temporary file from, on every desktop.
#pragma once

#include <cstddef>
#include <string_view>

namespace kestrelon {

// So many characters of the prefix count.
constexpr size_t kTempPrefixLength = 3;

// Whether a file may have `text` in its name. Linux itself refuses only "/", and Windows lets a
// colon make a hidden stream of another file: such a name could not be saved or sent everywhere.
inline bool IsFileName(std::string_view text) {
  for (const unsigned char byte : text) {
    const auto character = static_cast<char>(byte);
    if (byte < ' ' || std::string_view("<>:\"/\\|?*").find(character) != std::string_view::npos) {
      return false;
    }
  }
  return true;
}

}  // namespace kestrelon
