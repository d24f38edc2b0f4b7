// Text of the control: UTF-16, as in COM. Lengths and positions count UTF-16 units.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kestrelon {

using String = std::u16string;
using StringView = std::u16string_view;

// UTF-8 <-> UTF-16. Malformed sequences and lone surrogates become U+FFFD.
std::string ToUtf8(StringView text);
String FromUtf8(std::string_view text);

// The ANSI code page of the control's callers is Windows-1252. Characters without a place there
// become "?"; the five undefined bytes map to the C1 controls of the same number.
std::string ToAnsi(StringView text);
String FromAnsi(std::string_view text);
// UTF-8 that ANSI text was put into: a byte of no well-formed sequence is an ANSI one.
String FromUtf8WithAnsi(std::string_view text);
// ANSI code of one character (0..255); 63, the code of "?", when it has none.
int AnsiCode(char16_t character);

// Case folding by the simple one-to-one mappings of the letters of European languages (Latin up to
// Extended-A and Extended Additional, Greek, Cyrillic), independent of the user's locale.
char16_t LowerCase(char16_t character);
char16_t UpperCase(char16_t character);
String LowerCase(StringView text);
String UpperCase(StringView text);
bool EqualIgnoringCase(StringView a, StringView b);

// Without leading and trailing blanks (U+0020 only).
String Trim(StringView text);
// Every occurrence of `find` (not empty) replaced, from left to right.
String ReplaceAll(StringView text, StringView find, StringView replacement);
// The pieces between separators; an empty text has none.
std::vector<String> Split(StringView text, StringView separator);
// The last `count` units; the whole text when it is shorter. Error 5 when count is negative.
String Right(StringView text, int64_t count);
// The first `count` units; the whole text when it is shorter. Error 5 when count is negative.
String Left(StringView text, int64_t count);

}  // namespace kestrelon
