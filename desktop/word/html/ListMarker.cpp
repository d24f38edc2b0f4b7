#include "desktop/word/html/ListMarker.h"

#include <utility>

namespace kestrelon::desktop::word::html {
namespace {

std::string Roman(int32_t number) {
  constexpr std::pair<int32_t, const char*> kDigits[] = {
      {1000, "m"}, {900, "cm"}, {500, "d"}, {400, "cd"}, {100, "c"}, {90, "xc"}, {50, "l"},
      {40, "xl"},  {10, "x"},   {9, "ix"},  {5, "v"},    {4, "iv"},  {1, "i"}};
  std::string roman;
  for (const auto& [value, digits] : kDigits) {
    for (; number >= value; number -= value) roman += digits;
  }
  return roman;
}

// a to z, then aa, ab, …
std::string Letters(int32_t number) {
  std::string letters;
  for (; number > 0; number = (number - 1) / 26) {
    letters.insert(letters.begin(), static_cast<char>('a' + (number - 1) % 26));
  }
  return letters;
}

}  // namespace

String ListMarker(bool is_ordered, int32_t number, const std::string& style) {
  const auto says = [&](std::string_view word) { return style.find(word) != std::string::npos; };
  constexpr int32_t kLargestRoman = 3999;
  if (style == "none") return {};
  if (says("disc") || (style.empty() && !is_ordered)) return u"\u2022\t";
  if (says("circle")) return u"\u25E6\t";
  if (says("square")) return u"\u25AA\t";
  const bool is_lettered = number > 0;
  String text = FromUtf8(std::to_string(number));
  if (is_lettered && (style == "a" || says("lower-alpha") || says("lower-latin"))) {
    text = FromUtf8(Letters(number));
  } else if (is_lettered && (style == "A" || says("upper-alpha") || says("upper-latin"))) {
    text = UpperCase(FromUtf8(Letters(number)));
  } else if (is_lettered && number <= kLargestRoman && (style == "i" || says("lower-roman"))) {
    text = FromUtf8(Roman(number));
  } else if (is_lettered && number <= kLargestRoman && (style == "I" || says("upper-roman"))) {
    text = UpperCase(FromUtf8(Roman(number)));
  } else if (!is_ordered && !says("decimal")) {
    return u"\u2022\t";
  }
  return text + u".\t";
}

}  // namespace kestrelon::desktop::word::html
