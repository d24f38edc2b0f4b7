#include "desktop/word/html/CssValue.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <utility>

namespace kestrelon::desktop::word::html {
namespace {

constexpr std::string_view kBlanks = " \t\r\n\f";
constexpr double kWidest = 31680;  // 22 inches, which no measure of a document exceeds
constexpr size_t kLongestFontName = 31;

struct Number {
  double value;
  std::string_view unit;
};

std::optional<Number> ParseNumber(std::string_view text) {
  text = TrimBlanks(text);
  if (text.starts_with('+')) text.remove_prefix(1);
  double value = 0;
  const auto [end, error] =
      std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
  if (error != std::errc() || !std::isfinite(value)) return std::nullopt;
  return Number{value, text.substr(static_cast<size_t>(end - text.data()))};
}

std::optional<Color> ParseHex(std::string_view digits) {
  Color value = 0;
  const auto [end, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
  if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  if (digits.size() == 6) return value;
  if (digits.size() != 3) return std::nullopt;
  return ((value >> 8) * 0x11 << 16) | ((value >> 4 & 0xF) * 0x11 << 8) | ((value & 0xF) * 0x11);
}

// Three numbers or percentages, and an opacity that only counts where it is none at all.
std::optional<Color> ParseRgb(std::string_view arguments) {
  std::string list(arguments.substr(0, arguments.find(')')));
  std::replace_if(
      list.begin(), list.end(), [](char c) { return c == ',' || c == '/'; }, ' ');
  const std::vector<std::string_view> words = Words(list);
  if (words.size() < 3) return std::nullopt;
  Color color = 0;
  for (size_t i = 0; i < 3; ++i) {
    const auto number = ParseNumber(words[i]);
    if (!number) return std::nullopt;
    const double value = number->unit == "%" ? number->value * 2.55 : number->value;
    color = color << 8 | static_cast<Color>(std::lround(std::clamp(value, 0.0, 255.0)));
  }
  const auto opacity = words.size() > 3 ? ParseNumber(words[3]) : std::nullopt;
  if (opacity && opacity->value == 0) return std::nullopt;
  return color;
}

}  // namespace

std::string Lower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
  }
  return lower;
}

std::string_view TrimBlanks(std::string_view text) {
  const size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
}

std::vector<std::string_view> Words(std::string_view text) {
  std::vector<std::string_view> words;
  for (size_t i = 0; i < text.size();) {
    const size_t begin = text.find_first_not_of(kBlanks, i);
    if (begin == std::string_view::npos) break;
    char closing = 0;
    for (i = begin; i < text.size(); ++i) {
      const char c = text[i];
      if (closing != 0) {
        if (c == closing) closing = 0;
      } else if (c == '(' || c == '"' || c == '\'') {
        closing = c == '(' ? ')' : c;
      } else if (kBlanks.find(c) != std::string_view::npos) {
        break;
      }
    }
    words.push_back(text.substr(begin, i - begin));
  }
  return words;
}

std::vector<std::string_view> SplitAt(std::string_view text, char separator) {
  std::vector<std::string_view> pieces;
  while (true) {
    const size_t at = std::min(text.find(separator), text.size());
    pieces.push_back(TrimBlanks(text.substr(0, at)));
    if (at == text.size()) return pieces;
    text.remove_prefix(at + 1);
  }
}

std::optional<Color> ParseColor(std::string_view text) {
  const std::string lower = Lower(TrimBlanks(text));
  if (lower.starts_with('#')) return ParseHex(std::string_view(lower).substr(1));
  const size_t bracket = lower.find('(');
  if (bracket != std::string::npos && lower.starts_with("rgb")) {
    return ParseRgb(std::string_view(lower).substr(bracket + 1));
  }
  const std::optional<Color> named = NamedColor(lower);
  return named || lower.size() != 6 ? named : ParseHex(lower);
}

Length ParseLength(std::string_view text, int32_t em) {
  const auto number = ParseNumber(text);
  if (!number || number->value < 0) return {};
  const std::string unit = Lower(TrimBlanks(number->unit));
  if (unit == "%") return {Length::Unit::kPercent, std::min(number->value, 1000.0)};
  double twips = 15;
  if (unit == "pt") twips = 20;
  if (unit == "pc") twips = 240;
  if (unit == "in") twips = 1440;
  if (unit == "cm") twips = 1440 / 2.54;
  if (unit == "mm") twips = 144 / 2.54;
  if (unit == "em") twips = em;
  if (unit == "ex") twips = em / 2.0;
  if (unit == "rem") twips = 240;
  return {Length::Unit::kTwips, std::min(number->value * twips, kWidest)};
}

std::optional<int32_t> ParseTwips(std::string_view text, int32_t em) {
  const Length length = ParseLength(text, em);
  if (!length.IsTwips()) return std::nullopt;
  return static_cast<int32_t>(std::lround(length.value));
}

std::optional<int32_t> ParseFontSize(std::string_view text, int32_t current) {
  constexpr std::array<std::pair<std::string_view, double>, 7> kNamed = {{{"xx-small", 7.5},
                                                                          {"x-small", 7.5},
                                                                          {"small", 10},
                                                                          {"medium", 12},
                                                                          {"large", 13.5},
                                                                          {"x-large", 18},
                                                                          {"xx-large", 24}}};
  const std::string lower = Lower(TrimBlanks(text));
  std::optional<double> points;
  for (const auto& [name, size] : kNamed) {
    if (lower == name) points = size;
  }
  if (lower == "smaller") points = current / 2.0 / 1.2;
  if (lower == "larger") points = current / 2.0 * 1.2;
  if (!points) {
    const Length length = ParseLength(lower, current * 10);
    if (length.IsPercent()) points = current / 2.0 * length.value / 100;
    if (length.IsTwips()) points = length.value / 20;
  }
  if (!points || *points <= 0) return std::nullopt;
  return static_cast<int32_t>(std::lround(std::clamp(*points, 1.0, 1638.0) * 2));
}

std::optional<int32_t> ParseFontElementSize(std::string_view text) {
  constexpr std::array<int32_t, 7> kHalfPoints = {15, 20, 24, 27, 36, 48, 72};
  const auto number = ParseNumber(text);
  if (!number) return std::nullopt;
  text = TrimBlanks(text);
  const bool is_relative = text.starts_with('+') || text.starts_with('-');
  const double size = number->value + (is_relative ? 3 : 0);
  return kHalfPoints[static_cast<size_t>(std::clamp(size, 1.0, 7.0)) - 1];
}

std::string ParseFontFamily(std::string_view text) {
  constexpr std::string_view kQuotes = "\"'";
  std::string_view first = TrimBlanks(text.substr(0, text.find(',')));
  while (!first.empty() && kQuotes.find(first.front()) != std::string_view::npos) {
    first.remove_prefix(1);
  }
  first = TrimBlanks(first.substr(0, first.find_first_of(kQuotes)));
  const std::string lower = Lower(first);
  if (lower == "serif") return "Times New Roman";
  if (lower == "sans-serif" || lower == "system-ui") return "Arial";
  if (lower == "monospace") return "Courier New";
  const bool keeps = lower == "inherit" || lower == "initial" || first.size() > kLongestFontName;
  return keeps ? std::string() : std::string(first);
}

std::optional<const char*> BorderStyle(std::string_view lower_word) {
  constexpr std::array<std::pair<std::string_view, const char*>, 10> kStyles = {
      {{"none", ""},
       {"hidden", ""},
       {"solid", "single"},
       {"dotted", "dotted"},
       {"dashed", "dashed"},
       {"double", "double"},
       {"groove", "single"},
       {"ridge", "single"},
       {"inset", "single"},
       {"outset", "single"}}};
  for (const auto& [word, style] : kStyles) {
    if (lower_word == word) return style;
  }
  return std::nullopt;
}

std::optional<Border> ParseBorder(std::string_view text, int32_t em) {
  Border border;
  bool has_style = false;
  double twips = 45;  // "medium"
  for (const std::string_view word : Words(text)) {
    const std::string lower = Lower(word);
    if (const auto style = BorderStyle(lower)) {
      has_style = **style != '\0';
      border.style = *style;
    } else if (lower == "thin" || lower == "medium" || lower == "thick") {
      twips = lower == "thin" ? 15 : lower == "medium" ? 45 : 75;
    } else if (const Length width = ParseLength(lower, em); width.IsTwips()) {
      twips = width.value;
    } else if (const auto color = ParseColor(lower)) {
      border.color = color;
    }
  }
  constexpr double kThickest = 96;  // eighths of a point
  if (has_style && twips > 0) {
    border.eighths = static_cast<int32_t>(std::lround(std::clamp(twips * 0.4, 2.0, kThickest)));
  }
  return border;
}

}  // namespace kestrelon::desktop::word::html
