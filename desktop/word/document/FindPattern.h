// What Find.Text says: plain text with Word's "^" codes.
//
// ^p paragraph mark, ^l line break, ^t tab, ^m page break, ^s no-break space, ^~ no-break hyphen,
// ^- optional hyphen, ^+ em dash, ^= en dash, ^^ caret, ^nnn character of that ANSI code, ^0nnn or
// ^unnnn character of that code; ^? any character, ^# any digit, ^$ any letter, ^w white space of
// any length. A caret before anything else stands for itself. Straight quotes find curly ones and
// the other way round, as Word's do.
#pragma once

#include <cstdint>
#include <vector>

#include "automation/Text.h"

namespace kestrelon::desktop::word {

// Which units a text holds, folded into 64 bits: one that lacks a bit of the pattern's cannot hold
// the pattern.
using UnitSet = uint64_t;
UnitSet UnitSetOf(StringView text);

class FindPattern {
 public:
  // Error 5854 over 255 units.
  FindPattern(StringView text, bool match_case);

  friend bool operator==(const FindPattern& a, const FindPattern& b) {
    return a.match_case_ == b.match_case_ && a.text_ == b.text_;
  }

  // An empty pattern is never found.
  bool empty() const { return tokens_.empty(); }
  // A match may reach over the end of a paragraph.
  bool spans_paragraphs() const { return spans_paragraphs_; }
  // The longest match, in units; INT32_MAX where it has no bound.
  int32_t longest_match() const { return longest_match_; }

  bool MayBeIn(UnitSet units) const { return (units_ & ~units) == 0; }

  struct Match {
    size_t start;
    size_t length;
  };
  static constexpr size_t kNone = static_cast<size_t>(-1);
  // The first match in `text` that starts at or after `from`; start is kNone when there is none.
  // Paragraph marks are "\r" there.
  Match FindIn(StringView text, size_t from = 0) const;

 private:
  enum class Kind : uint8_t { kUnit, kAny, kDigit, kLetter, kWhiteSpace };
  struct Token {
    Kind kind;
    char16_t unit;  // of kUnit, folded
  };

  char16_t Fold(char16_t unit) const;
  void AddUnit(char16_t unit);
  size_t AddCode(StringView text, size_t at);
  void FinishTokens();
  size_t MatchAt(StringView text, size_t at) const;
  bool TokenTakes(const Token& token, char16_t unit) const;

  String text_;
  bool match_case_;
  bool spans_paragraphs_ = false;
  int32_t longest_match_ = 0;
  UnitSet units_ = 0;
  std::vector<Token> tokens_;
  // Units that the first token takes, when they are at most this many; searched for first.
  std::vector<char16_t> first_units_;
};

// The text that a replacement with "^" codes puts in for `match`. ^& is the match itself, ^p and ^l
// a line break. Error 5854 over 255 units.
String ExpandReplacement(StringView replacement, StringView match);

}  // namespace kestrelon::desktop::word
