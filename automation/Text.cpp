#include "automation/Text.h"

#include <algorithm>
#include <array>

#include "automation/AutomationError.h"

namespace kestrelon {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

// Windows-1252, 0x80 to 0x9F.
constexpr std::array<char16_t, 32> kAnsiHigh = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

void AppendUtf8(std::string& out, char32_t code) {
  if (code < 0x80) {
    out += static_cast<char>(code);
  } else if (code < 0x800) {
    out += static_cast<char>(0xC0 | (code >> 6));
    out += static_cast<char>(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    out += static_cast<char>(0xE0 | (code >> 12));
    out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (code & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (code >> 18));
    out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (code & 0x3F));
  }
}

void AppendUtf16(String& out, char32_t code) {
  if (code < 0x10000) {
    out += static_cast<char16_t>(code);
  } else {
    code -= 0x10000;
    out += static_cast<char16_t>(0xD800 | (code >> 10));
    out += static_cast<char16_t>(0xDC00 | (code & 0x3FF));
  }
}

// Appends the units from the first on that are ASCII; how many they are.
size_t AppendAsciiRun(std::string& out, StringView text) {
  size_t run = 0;
  // Block by block, which compilers make vector code of.
  std::array<char, 64> block;
  for (; run + block.size() <= text.size(); run += block.size()) {
    unsigned all = 0;
    for (size_t i = 0; i < block.size(); ++i) {
      all |= text[run + i];
      block[i] = static_cast<char>(text[run + i]);
    }
    if (all >= 0x80) break;
    out.append(block.data(), block.size());
  }
  const size_t from = run;
  while (run < text.size() && text[run] < 0x80) ++run;
  out.resize(out.size() + run - from);
  std::copy(text.begin() + from, text.begin() + run, out.end() - (run - from));
  return run;
}

bool IsHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLowSurrogate(char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// Reads one character at `at` and moves past it; past one byte only when it is malformed.
char32_t NextUtf8(std::string_view text, size_t& at) {
  const auto byte = [&](size_t index) { return static_cast<unsigned char>(text[index]); };
  const unsigned char lead = byte(at++);
  if (lead < 0x80) return lead;
  const int length = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
  if (lead < 0xC2 || lead > 0xF4 || at + length > text.size()) return kReplacement;
  char32_t code = lead & (0x3F >> length);
  for (int i = 0; i < length; ++i) {
    const unsigned char next = byte(at + i);
    if ((next & 0xC0) != 0x80) return kReplacement;
    code = code << 6 | (next & 0x3F);
  }
  const char32_t smallest = length == 1 ? 0x80 : length == 2 ? 0x800 : 0x10000;
  if (code < smallest || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) {
    return kReplacement;
  }
  at += length;
  return code;
}

// Ranges in which upper and lower case letters alternate, upper case on the given parity.
struct AlternatingRange {
  char16_t first;
  char16_t last;
  int upper_parity;
};
constexpr std::array<AlternatingRange, 10> kAlternating = {{{0x0100, 0x012F, 0},
                                                            {0x0132, 0x0137, 0},
                                                            {0x0139, 0x0148, 1},
                                                            {0x014A, 0x0177, 0},
                                                            {0x0179, 0x017E, 1},
                                                            {0x0218, 0x021B, 0},
                                                            {0x0460, 0x0481, 0},
                                                            {0x048A, 0x04BF, 0},
                                                            {0x1E00, 0x1E95, 0},
                                                            {0x1EA0, 0x1EFF, 0}}};

// Ranges of upper case letters whose lower case letters lie at a fixed distance.
struct ShiftedRange {
  char16_t first;
  char16_t last;
  char16_t distance;
};
constexpr std::array<ShiftedRange, 11> kShifted = {{{u'A', u'Z', 32},
                                                    {0x00C0, 0x00D6, 32},
                                                    {0x00D8, 0x00DE, 32},
                                                    {0x0386, 0x0386, 38},
                                                    {0x0388, 0x038A, 37},
                                                    {0x038C, 0x038C, 64},
                                                    {0x038E, 0x038F, 63},
                                                    {0x0391, 0x03A1, 32},
                                                    {0x03A3, 0x03AB, 32},
                                                    {0x0400, 0x040F, 80},
                                                    {0x0410, 0x042F, 32}}};

}  // namespace

std::string ToUtf8(StringView text) {
  std::string out;
  out.reserve(text.size() + text.size() / 4);
  for (size_t at = 0; at < text.size(); ++at) {
    at += AppendAsciiRun(out, text.substr(at));
    if (at == text.size()) break;
    char32_t code = text[at];
    if (IsHighSurrogate(text[at]) && at + 1 < text.size() && IsLowSurrogate(text[at + 1])) {
      code = 0x10000 + ((code - 0xD800) << 10) + (text[++at] - 0xDC00);
    } else if (IsHighSurrogate(text[at]) || IsLowSurrogate(text[at])) {
      code = kReplacement;
    }
    AppendUtf8(out, code);
  }
  return out;
}

String FromUtf8(std::string_view text) {
  const auto is_ascii = [](char byte) { return (byte & 0x80) == 0; };
  const auto others = std::find_if_not(text.begin(), text.end(), is_ascii);
  String out(text.begin(), others);
  if (others == text.end()) return out;
  out.reserve(text.size());
  for (size_t at = out.size(); at < text.size();) AppendUtf16(out, NextUtf8(text, at));
  return out;
}

String FromUtf8WithAnsi(std::string_view text) {
  String out;
  for (size_t at = 0; at < text.size();) {
    const size_t start = at;
    const char32_t code = NextUtf8(text, at);
    const bool is_malformed = code == kReplacement && at == start + 1;
    if (is_malformed) {
      out += FromAnsi(text.substr(start, 1));
    } else {
      AppendUtf16(out, code);
    }
  }
  return out;
}

int AnsiCode(char16_t character) {
  if (character < 0x80 || (character >= 0xA0 && character <= 0xFF)) return character;
  const auto found = std::find(kAnsiHigh.begin(), kAnsiHigh.end(), character);
  return found == kAnsiHigh.end() ? '?' : 0x80 + static_cast<int>(found - kAnsiHigh.begin());
}

std::string ToAnsi(StringView text) {
  std::string out;
  out.reserve(text.size());
  for (size_t at = 0; at < text.size(); ++at) {
    at += AppendAsciiRun(out, text.substr(at));
    if (at == text.size()) break;
    if (IsHighSurrogate(text[at]) && at + 1 < text.size() && IsLowSurrogate(text[at + 1])) ++at;
    out += static_cast<char>(AnsiCode(text[at]));
  }
  return out;
}

String FromAnsi(std::string_view text) {
  String out;
  out.reserve(text.size());
  for (const char byte : text) {
    const auto code = static_cast<unsigned char>(byte);
    out += code >= 0x80 && code < 0xA0 ? kAnsiHigh[code - 0x80] : static_cast<char16_t>(code);
  }
  return out;
}

char16_t LowerCase(char16_t character) {
  if (character < 0x80) {
    return character >= u'A' && character <= u'Z' ? static_cast<char16_t>(character + 32)
                                                  : character;
  }
  for (const ShiftedRange& range : kShifted) {
    if (character >= range.first && character <= range.last) {
      return static_cast<char16_t>(character + range.distance);
    }
  }
  for (const AlternatingRange& range : kAlternating) {
    if (character >= range.first && character <= range.last) {
      const bool upper = character % 2 == range.upper_parity;
      return static_cast<char16_t>(upper ? character + 1 : character);
    }
  }
  return character == 0x0178 ? u'\x00FF' : character;
}

char16_t UpperCase(char16_t character) {
  for (const ShiftedRange& range : kShifted) {
    if (character >= range.first + range.distance && character <= range.last + range.distance) {
      return static_cast<char16_t>(character - range.distance);
    }
  }
  for (const AlternatingRange& range : kAlternating) {
    if (character >= range.first && character <= range.last) {
      const bool upper = character % 2 == range.upper_parity;
      return static_cast<char16_t>(upper ? character : character - 1);
    }
  }
  return character == 0x00FF ? u'\x0178' : character;
}

String LowerCase(StringView text) {
  String out(text);
  for (char16_t& unit : out) unit = LowerCase(unit);
  return out;
}

String UpperCase(StringView text) {
  String out(text);
  for (char16_t& unit : out) unit = UpperCase(unit);
  return out;
}

bool EqualIgnoringCase(StringView a, StringView b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char16_t x, char16_t y) { return LowerCase(x) == LowerCase(y); });
}

String Trim(StringView text) {
  const size_t first = text.find_first_not_of(u' ');
  if (first == StringView::npos) return {};
  return String(text.substr(first, text.find_last_not_of(u' ') - first + 1));
}

String ReplaceAll(StringView text, StringView find, StringView replacement) {
  String out;
  size_t from = 0;
  for (size_t at = text.find(find); at != StringView::npos; at = text.find(find, from)) {
    out.append(text, from, at - from).append(replacement);
    from = at + find.size();
  }
  out.append(text, from);
  return out;
}

std::vector<String> Split(StringView text, StringView separator) {
  std::vector<String> pieces;
  if (text.empty()) return pieces;
  size_t from = 0;
  for (size_t at = text.find(separator); at != StringView::npos; at = text.find(separator, from)) {
    pieces.emplace_back(text.substr(from, at - from));
    from = at + separator.size();
  }
  pieces.emplace_back(text.substr(from));
  return pieces;
}

String Right(StringView text, int64_t count) {
  if (count < 0) throw AutomationError(kInvalidProcedureCall);
  const auto size = static_cast<int64_t>(text.size());
  return String(text.substr(static_cast<size_t>(size - std::min(count, size))));
}

String Left(StringView text, int64_t count) {
  if (count < 0) throw AutomationError(kInvalidProcedureCall);
  return String(text.substr(0, static_cast<size_t>(count)));
}

}  // namespace kestrelon
