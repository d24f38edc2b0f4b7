#include "desktop/converter/HtmlTags.h"

#include <algorithm>

namespace kestrelon::desktop {

char LowerCaseAscii(char character) {
  const bool is_upper = character >= 'A' && character <= 'Z';
  return is_upper ? static_cast<char>(character - 'A' + 'a') : character;
}

size_t FindTag(std::string_view text, std::string_view tag, size_t from) {
  const std::string_view rest = text.substr(from);
  const auto* const found =
      std::search(rest.begin(), rest.end(), tag.begin(), tag.end(),
                  [](char character, char lower) { return LowerCaseAscii(character) == lower; });
  return from + static_cast<size_t>(found - rest.begin());
}

}  // namespace kestrelon::desktop
