// Values of CSS and of the attributes that came before it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/word/html/HtmlBlocks.h"

namespace kestrelon::desktop::word::html {

// ASCII letters in lower case.
std::string Lower(std::string_view text);
std::string_view TrimBlanks(std::string_view text);
// The values of a list between blanks; what stands in brackets or quotes stays together.
std::vector<std::string_view> Words(std::string_view text);
std::vector<std::string_view> SplitAt(std::string_view text, char separator);

// A name, #rgb, #rrggbb, rgb(…), and rrggbb as old attributes have it. Nothing for "transparent".
std::optional<Color> ParseColor(std::string_view text);
std::optional<Color> NamedColor(std::string_view lower_name);

// px, pt, pc, in, cm, mm, em, rem, ex, % and plain numbers, which are pixels. `em` is the size of
// the text in twips. At most 22 inches.
Length ParseLength(std::string_view text, int32_t em);
// The same as twips; nothing for a percentage.
std::optional<int32_t> ParseTwips(std::string_view text, int32_t em);

// The size of `text` in half-points, from 1 to 1638 points; relative ones to `current`.
std::optional<int32_t> ParseFontSize(std::string_view text, int32_t current);
// 1 to 7, +n and -n of the font element.
std::optional<int32_t> ParseFontElementSize(std::string_view text);
// The first family of a list; "" for none.
std::string ParseFontFamily(std::string_view text);

// "1px solid #ccc" in any order; a width without a style is no border.
std::optional<Border> ParseBorder(std::string_view text, int32_t em);
// Nothing when `lower_word` is no border style; "" for "none" and "hidden".
std::optional<const char*> BorderStyle(std::string_view lower_word);

}  // namespace kestrelon::desktop::word::html
