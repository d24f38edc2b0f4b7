// The text of a vCard or iCalendar object as its content lines, read and edited in place.
//
// A content line is `[group.]name[;parameters]:value`, folded over one or more lines of the file.
// The text is kept as it is; an edit touches the bytes of one line. Comments, blank lines and what
// is no content line at all are lines without a name. Lines and components are numbered from 0;
// an edit moves the numbers of the lines behind it.
//
// Any bytes are taken; reading is linear in their number. Error 7 for 2 GiB and more.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "automation/Text.h"

namespace kestrelon::desktop {

// One `;name=value,value` of a line, unquoted and without its ^-escapes.
struct Parameter {
  std::string name;  // in capitals; "" for a bare word of vCard 2.1, which then is the value
  std::vector<std::string> values;
};

// From BEGIN (line `begin`) to END (line `end`; one past the last line when END is missing). Its
// properties lie between the two.
struct Component {
  size_t begin;
  size_t end;
};

class ContentLines {
 public:
  explicit ContentLines(std::string text);

  const std::string& text() const { return text_; }
  size_t size() const { return lines_.size(); }
  // Grows with every edit.
  uint64_t changes() const { return changes_; }

  // vCard 2.1: no line is folded on writing, except by soft line breaks in quoted-printable values,
  // and a fold in a file stands for the white space that it begins with.
  void UseOldFolding() { old_folding_ = true; }

  // All the lines, as the component that holds the outermost ones.
  Component Whole() const { return {static_cast<size_t>(-1), lines_.size()}; }
  // The first component called `name` directly in `within` that begins at line `from` or later.
  std::optional<Component> FindComponent(std::string_view name, const Component& within,
                                         size_t from = 0) const;
  // The first line called `name` in `within` at line `from` or later; lines of the components
  // inside it only when `nested`.
  std::optional<size_t> Find(std::string_view name, const Component& within, size_t from = 0,
                             bool nested = false) const;
  // The line behind `line`; of a BEGIN, the one behind its END.
  size_t Next(size_t line) const;

  // Names match without regard to the case of ASCII letters.
  bool Is(size_t line, std::string_view name) const;
  std::string_view Name(size_t line) const;   // as written; "" for what is no content line
  std::string_view Group(size_t line) const;  // "" for none
  bool HasParameters(size_t line) const;
  std::vector<Parameter> Parameters(size_t line) const;
  // ";name=value…" as it stands, when there are no folds, quotes or ^-escapes in it; nullopt
  // otherwise. It spares the copies of Parameters().
  std::optional<std::string_view> PlainParameters(size_t line) const;
  bool IsQuotedPrintable(size_t line) const { return lines_[line].quoted_printable; }
  // Unfolded, escapes as they stand.
  std::string RawValue(size_t line) const;
  // The line's bytes with its folds and line end.
  std::string_view Bytes(size_t line) const;
  // The bytes from `begin` to before `end`, both numbers of lines.
  std::string_view Bytes(size_t begin, size_t end) const;

  // `value` is escaped already and has no line breaks. Group, name and parameters keep their bytes.
  void SetRawValue(size_t line, std::string_view value);
  // Replaces one parameter, adds it behind the others, or removes it when `value` is "".
  void SetParameter(size_t line, std::string_view name, std::string_view value);
  void RemoveParameters(size_t line, bool (*drop)(const Parameter&));
  // `content` is a whole line, unfolded and without a line end: before line `before`, or at the
  // end.
  void Insert(size_t before, std::string_view content);
  void Replace(size_t line, std::string_view content);
  void Remove(size_t line);

 private:
  // Offsets into the text.
  struct Line {
    enum class Kind : uint8_t { kOther, kProperty, kBegin, kEnd };
    uint32_t begin;
    uint32_t name;  // behind the group's dot
    uint32_t name_end;
    uint32_t colon;        // content_end when there is none
    uint32_t content_end;  // before the line end
    uint32_t end;
    uint32_t partner;  // of a BEGIN: the line of its END; 0 for none
    Kind kind;
    bool folded;
    bool quoted_printable;
  };

  void ReadLines();
  Line ReadLine(size_t begin) const;
  void ReadHeader(Line& line, size_t first_end) const;
  size_t EndOfLine(size_t from) const;
  size_t WithoutLineEnd(size_t begin, size_t end) const;
  std::string Unfold(size_t begin, size_t end, bool quoted_printable) const;
  std::string_view ComponentName(size_t line) const;
  bool IsBeginOf(size_t line, std::string_view name) const;
  void MatchComponents();
  std::string FoldHeader(std::string_view header) const;
  std::string Fold(std::string_view header, std::string_view value) const;
  void ReplaceContent(size_t line, std::string_view content);
  void MoveLines(size_t from, int64_t distance);

  std::string text_;
  std::vector<Line> lines_;
  std::string_view line_end_ = "\r\n";
  bool old_folding_ = false;
  uint64_t changes_ = 0;
};

// Calls `visit` with the name and each value of every parameter, both valid during the call only.
template <typename Visit>
void VisitParameters(const ContentLines& lines, size_t line, Visit visit) {
  if (!lines.HasParameters(line)) return;
  const auto plain = lines.PlainParameters(line);
  if (!plain) {
    for (const Parameter& parameter : lines.Parameters(line)) {
      for (const std::string& value : parameter.values) visit(parameter.name, value);
    }
    return;
  }
  for (size_t at = 1; at <= plain->size();) {
    const size_t end = std::min(plain->find(';', at), plain->size());
    std::string_view values = plain->substr(at, end - at);
    const size_t equals = values.find('=');
    const bool bare = equals == std::string_view::npos;
    const std::string_view name = bare ? "" : values.substr(0, equals);
    if (!bare) values.remove_prefix(equals + 1);
    for (size_t start = 0; start <= values.size();) {
      const size_t comma = std::min(values.find(',', start), values.size());
      visit(name, values.substr(start, comma - start));
      start = comma + 1;
    }
    at = end + 1;
  }
}

// The parameter of that name (capitals), or nullptr.
const Parameter* FindParameter(const std::vector<Parameter>& parameters, std::string_view name);
// ";name=value", quoted and with ^-escapes as needed.
std::string FormatParameter(std::string_view name, std::string_view value);

// Backslash escapes of text values: line breaks (any form; LF when read), commas, semicolons and
// backslashes. Other control characters than tabs are written as blanks.
std::string EscapeText(std::string_view text);
std::string UnescapeText(std::string_view text);
// The same for texts of properties, which break lines by CR LF.
String ReadText(std::string_view value);
std::string WriteText(StringView text);
// The pieces of a structured value (';') or of a list (','), still escaped. At least one.
std::vector<std::string> SplitEscaped(std::string_view value, char separator);

constexpr char UpperAscii(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; }
std::string UpperAscii(std::string_view text);
// Without regard to case.
inline bool EqualAscii(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return UpperAscii(x) == UpperAscii(y);
         });
}

}  // namespace kestrelon::desktop
