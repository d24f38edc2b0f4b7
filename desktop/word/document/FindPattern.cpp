#include "desktop/word/document/FindPattern.h"

#include <algorithm>
#include <array>
#include <limits>

#include "desktop/word/document/Paragraph.h"
#include "desktop/word/document/WordErrors.h"

namespace kestrelon::desktop::word {
namespace {

constexpr size_t kLongestText = 255;
constexpr int32_t kUnbounded = std::numeric_limits<int32_t>::max();

void CheckLength(StringView text) {
  if (text.size() > kLongestText) throw ParameterTooLong();
}

bool IsDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }
bool IsLetter(char16_t unit) {
  return LowerCase(unit) != unit || UpperCase(unit) != unit || unit >= 0x2C00;
}
bool IsWhiteSpace(char16_t unit) { return unit == u' ' || unit == u'\t' || unit == 0x00A0; }

// The unit that a "^" code means in find and replacement text alike; 0 when it has no such meaning.
char16_t UnitOfCode(char16_t code) {
  switch (code) {
    case u't':
      return kTabUnit;
    case u'l':
      return kLineBreakUnit;
    case u's':
      return 0x00A0;
    case u'+':
      return 0x2014;
    case u'=':
      return 0x2013;
    case u'^':
      return u'^';
    default:
      return 0;
  }
}

struct NumberedCode {
  char16_t unit = 0;
  size_t length = 0;  // of the digits; 0 when there are none
};

// The digits behind a caret: three of an ANSI code, or "0" or "u" and those of a Unicode one.
NumberedCode ReadNumber(StringView digits) {
  const bool is_unicode = digits.starts_with(u'0') || digits.starts_with(u'u');
  size_t end = is_unicode ? 1 : 0;
  const size_t longest = is_unicode ? 6 : 3;
  uint32_t code = 0;
  while (end < std::min(digits.size(), longest) && IsDigit(digits[end])) {
    code = code * 10 + (digits[end++] - u'0');
  }
  const bool has_digits = end > (is_unicode ? 1 : 0);
  if (!has_digits || code == 0 || code > 0xFFFF || (!is_unicode && code > 255)) return {};
  if (is_unicode) return {static_cast<char16_t>(code), end};
  return {FromAnsi(std::string(1, static_cast<char>(code)))[0], end};
}

// Straight and curly quotes are the same, and so are both cases.
char16_t FoldFully(char16_t unit) {
  if (unit < 0x80) return unit >= u'A' && unit <= u'Z' ? unit | 0x20 : unit;
  if (unit == 0x2018 || unit == 0x2019) return u'\'';
  if (unit == 0x201C || unit == 0x201D) return u'"';
  return LowerCase(unit);
}

// Letters, digits and the brackets of tags have bits of their own.
constexpr uint32_t BitOf(char16_t unit) {
  if (unit >= u'a' && unit <= u'z') return unit - u'a';
  if (unit >= u'0' && unit <= u'9') return 26 + unit - u'0';
  if (unit == u'<') return 36;
  return unit == u'>' ? 37 : 38 + unit % 26;
}

constexpr std::array<UnitSet, 0x80> MakeAsciiSets() {
  std::array<UnitSet, 0x80> sets{};
  for (char16_t unit = 0; unit < sets.size(); ++unit) {
    const bool is_capital = unit >= u'A' && unit <= u'Z';
    sets[unit] = UnitSet{1} << BitOf(is_capital ? unit | 0x20 : unit);
  }
  return sets;
}

constexpr std::array<UnitSet, 0x80> kAsciiSets = MakeAsciiSets();

// StringView::find of one unit, by blocks that the compiler compares at once: most of a search is
// looking for the first unit of a tag.
size_t FindUnit(StringView text, char16_t unit, size_t from) {
  constexpr size_t kBlock = 16;
  for (; from + kBlock <= text.size(); from += kBlock) {
    uint16_t found = 0;
    for (size_t i = 0; i < kBlock; ++i) found |= text[from + i] == unit ? 1 : 0;
    if (found != 0) break;
  }
  return text.find(unit, from);
}

}  // namespace

UnitSet UnitSetOf(StringView text) {
  UnitSet units = 0;
  for (const char16_t unit : text) {
    units |= unit < 0x80 ? kAsciiSets[unit] : UnitSet{1} << BitOf(FoldFully(unit));
  }
  return units;
}

FindPattern::FindPattern(StringView text, bool match_case) : text_(text), match_case_(match_case) {
  CheckLength(text);
  for (size_t i = 0; i < text.size();) {
    const bool is_code = text[i] == u'^' && i + 1 < text.size();
    const size_t behind = is_code ? AddCode(text, i) : i;
    if (behind == i) AddUnit(text[i]);
    i = std::max(behind, i + 1);
  }
  FinishTokens();
}

char16_t FindPattern::Fold(char16_t unit) const {
  const char16_t folded = FoldFully(unit);
  const bool is_quote = folded == u'\'' || folded == u'"';
  return match_case_ && !is_quote ? unit : folded;
}

void FindPattern::AddUnit(char16_t unit) { tokens_.push_back({Kind::kUnit, Fold(unit)}); }

// Returns where the text goes on behind the code; `at` when it is none.
size_t FindPattern::AddCode(StringView text, size_t at) {
  const char16_t code = text[at + 1];
  if (const NumberedCode number = ReadNumber(text.substr(at + 1)); number.length != 0) {
    // Word's own numbers for a paragraph mark and a line break.
    AddUnit(number.unit == u'\n' ? kLineBreakUnit : number.unit);
    return at + 1 + number.length;
  }
  if (const char16_t unit = UnitOfCode(code)) {
    AddUnit(unit);
    return at + 2;
  }
  switch (code) {
    case u'p':
      AddUnit(u'\r');
      break;
    case u'm':
      AddUnit(kPageBreakUnit);
      break;
    case u'n':
      AddUnit(kColumnBreakUnit);
      break;
    case u'~':
      AddUnit(kNoBreakHyphenUnit);
      break;
    case u'-':
      AddUnit(kSoftHyphenUnit);
      break;
    case u'g':
      AddUnit(kObjectUnit);
      break;
    case u'?':
      tokens_.push_back({Kind::kAny, 0});
      break;
    case u'#':
      tokens_.push_back({Kind::kDigit, 0});
      break;
    case u'$':
      tokens_.push_back({Kind::kLetter, 0});
      break;
    case u'w':
      tokens_.push_back({Kind::kWhiteSpace, 0});
      break;
    default:
      return at;
  }
  return at + 2;
}

void FindPattern::FinishTokens() {
  longest_match_ = static_cast<int32_t>(tokens_.size());
  for (const Token& token : tokens_) {
    if (token.kind == Kind::kWhiteSpace) longest_match_ = kUnbounded;
    if (token.kind != Kind::kUnit) continue;
    if (token.unit == u'\r') spans_paragraphs_ = true;
    units_ |= UnitSetOf(StringView(&token.unit, 1));
  }
  if (tokens_.empty() || tokens_.front().kind != Kind::kUnit) return;
  const char16_t first = tokens_.front().unit;
  first_units_ = {first};
  const char16_t upper = UpperCase(first);
  if (!match_case_ && upper != first) first_units_.push_back(upper);
  if (first == u'\'') first_units_.insert(first_units_.end(), {0x2018, 0x2019});
  if (first == u'"') first_units_.insert(first_units_.end(), {0x201C, 0x201D});
}

FindPattern::Match FindPattern::FindIn(StringView text, size_t from) const {
  while (from < text.size()) {
    if (first_units_.size() == 1) {
      from = FindUnit(text, first_units_.front(), from);
    } else if (!first_units_.empty()) {
      from = text.find_first_of(StringView(first_units_.data(), first_units_.size()), from);
    }
    if (from == StringView::npos) break;
    const size_t length = MatchAt(text, from);
    if (length != 0) return {from, length};
    ++from;
  }
  return {kNone, 0};
}

// The length of the match; 0 when there is none.
size_t FindPattern::MatchAt(StringView text, size_t at) const {
  size_t end = at;
  for (const Token& token : tokens_) {
    if (end == text.size() || !TokenTakes(token, text[end])) return 0;
    ++end;
    if (token.kind != Kind::kWhiteSpace) continue;
    while (end < text.size() && TokenTakes(token, text[end])) ++end;
  }
  return end - at;
}

bool FindPattern::TokenTakes(const Token& token, char16_t unit) const {
  switch (token.kind) {
    case Kind::kUnit:
      return token.unit == unit || token.unit == Fold(unit);
    case Kind::kAny:
      return unit != u'\r' && unit != u'\a';
    case Kind::kDigit:
      return IsDigit(unit);
    case Kind::kLetter:
      return IsLetter(unit);
    case Kind::kWhiteSpace:
      return IsWhiteSpace(unit);
  }
  return false;
}

String ExpandReplacement(StringView replacement, StringView match) {
  CheckLength(replacement);
  String text;
  for (size_t i = 0; i < replacement.size(); ++i) {
    const bool is_code = replacement[i] == u'^' && i + 1 < replacement.size();
    if (!is_code) {
      text += replacement[i];
      continue;
    }
    const char16_t code = replacement[i + 1];
    const NumberedCode number = ReadNumber(replacement.substr(i + 1));
    if (number.length != 0) {
      text += number.unit;
      i += number.length;
    } else if (const char16_t unit = UnitOfCode(code)) {
      text += unit;
      ++i;
    } else if (code == u'&') {
      text += match;
      ++i;
    } else if (code == u'p' || code == u'~' || code == u'-') {
      text += code == u'p' ? kLineBreakUnit : code == u'~' ? u'\u2011' : u'\u00AD';
      ++i;
    } else {
      text += u'^';
    }
  }
  return text;
}

}  // namespace kestrelon::desktop::word
