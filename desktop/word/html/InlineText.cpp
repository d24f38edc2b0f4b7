#include "desktop/word/html/InlineText.h"

#include <utility>

namespace kestrelon::desktop::word::html {
namespace {

bool IsWhiteSpace(char16_t unit) {
  return unit == u' ' || unit == u'\t' || unit == u'\n' || unit == u'\r' || unit == u'\f';
}

}  // namespace

void InlineText::Append(char16_t unit, const Inherited& style) {
  const bool goes_on =
      !runs_.empty() && runs_.back().style == style.text && runs_.back().link == style.link;
  if (!goes_on) runs_.push_back({{}, style.text, style.link});
  runs_.back().text += unit;
}

void InlineText::Add(StringView text, const Inherited& style) {
  for (const char16_t unit : text) {
    if (style.preserves) {
      if (unit == u'\r') continue;
      Append(unit == u'\n' ? u'\v' : unit, style);
      at_line_start_ = unit == u'\n';
      ends_with_blank_ = false;
    } else if (!IsWhiteSpace(unit)) {
      Append(unit, style);
      at_line_start_ = ends_with_blank_ = false;
    } else if (!at_line_start_ && !ends_with_blank_) {
      Append(u' ', style);
      ends_with_blank_ = true;
    }
  }
}

void InlineText::DropBlank() {
  if (!std::exchange(ends_with_blank_, false)) return;
  runs_.back().text.pop_back();
  if (runs_.back().text.empty()) runs_.pop_back();
}

void InlineText::AddBreak(const Inherited& style) {
  DropBlank();
  Append(u'\v', style);
  at_line_start_ = true;
}

std::vector<Run> InlineText::Take() {
  DropBlank();
  if (!runs_.empty() && runs_.back().text.back() == u'\v') {
    runs_.back().text.pop_back();
    if (runs_.back().text.empty()) runs_.pop_back();
  }
  at_line_start_ = true;
  return std::exchange(runs_, {});
}

}  // namespace kestrelon::desktop::word::html
