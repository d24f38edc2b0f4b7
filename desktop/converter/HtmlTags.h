// Finding tags in HTML text, whose names are written in any case.
#pragma once

#include <string_view>

namespace kestrelon::desktop {

char LowerCaseAscii(char character);

// Where `tag`, in lower case, stands in any case from `from` on; the end of the text when nowhere.
size_t FindTag(std::string_view text, std::string_view tag, size_t from);

}  // namespace kestrelon::desktop
