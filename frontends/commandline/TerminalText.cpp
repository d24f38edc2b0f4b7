#include "frontends/commandline/TerminalText.h"

#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include <algorithm>

namespace kestrelon::commandline {
namespace {

bool TurnsDirection(UChar32 character) {
  return u_hasBinaryProperty(character, UCHAR_BIDI_CONTROL) != 0;
}

bool BreaksLine(UChar32 character) {
  return character == '\r' || character == '\n' || character == 0x85 || character == 0x2028 ||
         character == 0x2029;
}

// Columns of a terminal: none for marks on the character before, two for East Asian characters.
size_t Width(const std::string& printable) {
  const String text = FromUtf8(printable);
  size_t width = 0;
  for (int32_t i = 0; i < static_cast<int32_t>(text.size());) {
    UChar32 character = 0;
    U16_NEXT(text.data(), i, static_cast<int32_t>(text.size()), character);
    const int8_t type = u_charType(character);
    if (type == U_NON_SPACING_MARK || type == U_ENCLOSING_MARK || type == U_FORMAT_CHAR) continue;
    const int32_t east_asian = u_getIntPropertyValue(character, UCHAR_EAST_ASIAN_WIDTH);
    width += east_asian == U_EA_WIDE || east_asian == U_EA_FULLWIDTH ? 2 : 1;
  }
  return width;
}

}  // namespace

std::string OneLine(StringView text) {
  String line;
  for (const char16_t unit : text) {
    if (BreaksLine(unit) || unit == '\t') {
      line += u' ';
    } else if (u_charType(unit) != U_CONTROL_CHAR && !TurnsDirection(unit)) {
      line += unit;
    }
  }
  return ToUtf8(line);
}

std::vector<std::string> Lines(StringView text) {
  std::vector<std::string> lines;
  size_t begin = 0;
  for (size_t i = 0; i <= text.size(); ++i) {
    if (i < text.size() && !BreaksLine(text[i])) continue;
    lines.push_back(OneLine(text.substr(begin, i - begin)));
    if (text.substr(i).starts_with(u"\r\n")) ++i;
    begin = i + 1;
  }
  while (!lines.empty() && lines.back().empty()) lines.pop_back();
  return lines;
}

void TextTable::AddRow(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }

void TextTable::Print(std::ostream& out) const {
  constexpr size_t kGap = 2;
  if (rows_.empty()) return;
  std::vector<size_t> widths(rows_.front().size());
  for (const auto& row : rows_) {
    for (size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], Width(row[i]));
  }
  for (const auto& row : rows_) {
    std::string line;
    for (size_t i = 0; i < row.size(); ++i) {
      line += row[i] + std::string(widths[i] - Width(row[i]) + kGap, ' ');
    }
    line.erase(line.find_last_not_of(' ') + 1);
    out << line << "\n";
  }
}

}  // namespace kestrelon::commandline
