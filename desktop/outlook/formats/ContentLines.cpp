#include "desktop/outlook/formats/ContentLines.h"

#include <algorithm>
#include <cstring>

#include "automation/AutomationError.h"

namespace kestrelon::desktop {
namespace {

constexpr size_t kLongestText = 0x7FFFFFFF;
constexpr size_t kLineLength = 75;  // octets, without the line end
constexpr std::string_view kMark = "\xEF\xBB\xBF";
constexpr std::string_view kQuotedPrintable = "QUOTED-PRINTABLE";
constexpr std::string_view kEncoding = "ENCODING=";
// How many of the innermost open components an END is looked for in.
constexpr size_t kDeepest = 16;

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

// Where a quoted-printable text may be broken at `at` or before: not inside "=XX", and so that the
// next line is not taken for the END of the component.
size_t SoftBreak(std::string_view value, size_t at) {
  for (size_t back = 1; back <= 2 && back < at; ++back) {
    if (value[at - back] == '=') at -= back;
  }
  return EqualAscii(value.substr(at, 4), "END:") && at > 1 ? SoftBreak(value, at - 1) : at;
}

// The colon outside of quotes; a quote that nothing closes does not hide it. `end` for none.
size_t FindColon(std::string_view text, size_t from, size_t end) {
  bool quoted = false;
  size_t quoted_colon = end;
  for (size_t at = from; at < end; ++at) {
    if (text[at] == '"') quoted = !quoted;
    if (text[at] != ':') continue;
    if (!quoted) return at;
    quoted_colon = std::min(quoted_colon, at);
  }
  return quoted_colon;
}

// A quote that nothing closes is no quote, and must not meet one in a new value.
std::string WithoutStrayQuote(std::string header) {
  if (std::count(header.begin(), header.end(), '"') % 2 == 1) header.erase(header.rfind('"'), 1);
  return header;
}

// The place of a parameter in the header of a line: from its semicolon to its end.
struct ParameterSpan {
  size_t begin;
  size_t name_end;
  size_t end;
};

std::vector<ParameterSpan> FindParameters(std::string_view header) {
  std::vector<ParameterSpan> spans;
  size_t at = std::min(header.find(';'), header.size());
  while (at < header.size()) {
    ParameterSpan span{at, std::string_view::npos, 0};
    bool quoted = false;
    for (++at; at < header.size() && (quoted || header[at] != ';'); ++at) {
      if (header[at] == '"') quoted = !quoted;
      if (header[at] == '=' && span.name_end == std::string_view::npos) span.name_end = at;
    }
    span.end = at;
    spans.push_back(span);
  }
  return spans;
}

bool IsQuotedPrintableHeader(std::string_view header) {
  if (header.find_first_of("Qq") == std::string_view::npos) return false;
  std::string unfolded(header);
  for (size_t at; (at = unfolded.find('\n')) != std::string::npos;) {
    const size_t begin = at > 0 && unfolded[at - 1] == '\r' ? at - 1 : at;
    unfolded.erase(begin, at + 2 - begin);
  }
  unfolded = WithoutStrayQuote(std::move(unfolded));
  for (const ParameterSpan& span : FindParameters(unfolded)) {
    const std::string_view text(unfolded.data() + span.begin + 1, span.end - span.begin - 1);
    const bool named = EqualAscii(text.substr(0, kEncoding.size()), kEncoding);
    if (EqualAscii(text.substr(named ? kEncoding.size() : 0), kQuotedPrintable)) return true;
  }
  return false;
}

std::string UnescapeParameter(std::string_view value) {
  std::string out;
  for (size_t i = 0; i < value.size(); ++i) {
    const char next = value[i] == '^' && i + 1 < value.size() ? value[i + 1] : '\0';
    if (next == 'n' || next == '^' || next == '\'') {
      out += next == 'n' ? '\n' : next == '^' ? '^' : '"';
      ++i;
    } else if (value[i] != '"') {
      out += value[i];
    }
  }
  return out;
}

std::vector<std::string> SplitParameter(std::string_view values) {
  std::vector<std::string> out;
  size_t start = 0;
  bool quoted = false;
  for (size_t i = 0; i <= values.size(); ++i) {
    if (i == values.size() || (values[i] == ',' && !quoted)) {
      out.push_back(UnescapeParameter(values.substr(start, i - start)));
      start = i + 1;
    } else if (values[i] == '"') {
      quoted = !quoted;
    }
  }
  return out;
}

}  // namespace

std::string UpperAscii(std::string_view text) {
  std::string out(text);
  std::transform(out.begin(), out.end(), out.begin(), [](char c) { return UpperAscii(c); });
  return out;
}

// --- Reading ---

ContentLines::ContentLines(std::string text) : text_(std::move(text)) {
  if (text_.size() > kLongestText) throw AutomationError(kOutOfMemory);
  ReadLines();
}

void ContentLines::ReadLines() {
  lines_.reserve(text_.size() / 32 + 4);
  size_t at = text_.starts_with(kMark) ? kMark.size() : 0;
  while (at < text_.size()) {
    lines_.push_back(ReadLine(at));
    at = lines_.back().end;
  }
  const size_t first = text_.find('\n');
  MatchComponents();
  if (first != std::string::npos && (first == 0 || text_[first - 1] != '\r')) line_end_ = "\n";
}

size_t ContentLines::EndOfLine(size_t from) const {
  const void* found = std::memchr(text_.data() + from, '\n', text_.size() - from);
  return found == nullptr ? text_.size() : static_cast<const char*>(found) - text_.data() + 1;
}

size_t ContentLines::WithoutLineEnd(size_t begin, size_t end) const {
  if (end > begin && text_[end - 1] == '\n') {
    --end;
    while (end > begin && text_[end - 1] == '\r') --end;
  }
  return end;
}

ContentLines::Line ContentLines::ReadLine(size_t begin) const {
  Line line{};
  line.begin = static_cast<uint32_t>(begin);
  size_t end = EndOfLine(begin);
  const size_t first_end = WithoutLineEnd(begin, end);
  while (end < text_.size() && IsBlank(text_[end])) {
    end = EndOfLine(end);
    line.folded = true;
  }
  line.end = static_cast<uint32_t>(end);
  line.content_end = static_cast<uint32_t>(WithoutLineEnd(begin, end));
  ReadHeader(line, first_end);
  if (line.colon == line.name_end || line.kind == Line::Kind::kOther) return line;

  const std::string_view header(text_.data() + line.name_end, line.colon - line.name_end);
  line.quoted_printable = IsQuotedPrintableHeader(header);
  size_t content_end = line.content_end;
  while (line.quoted_printable && content_end > line.colon && text_[content_end - 1] == '=' &&
         end < text_.size() && !EqualAscii(std::string_view(text_).substr(end, 4), "END:")) {
    const size_t next = end;
    do {
      end = EndOfLine(end);
    } while (end < text_.size() && IsBlank(text_[end]));
    content_end = WithoutLineEnd(next, end);
    line.folded = true;
    // A soft break before nothing: what follows is the next property.
    if (content_end == next) break;
  }
  line.end = static_cast<uint32_t>(end);
  line.content_end = static_cast<uint32_t>(content_end);
  return line;
}

// Group, name and the colon. A group and a name are never folded.
void ContentLines::ReadHeader(Line& line, size_t first_end) const {
  size_t at = line.begin;
  line.name = line.begin;
  for (; at < first_end && text_[at] != ':' && text_[at] != ';'; ++at) {
    if (text_[at] == '.') line.name = static_cast<uint32_t>(at + 1);
  }
  line.name_end = static_cast<uint32_t>(at);
  if (at == first_end || text_[at] != ':') at = FindColon(text_, at, line.content_end);
  line.colon = static_cast<uint32_t>(at);
  if (at == line.content_end || line.name == line.name_end || IsBlank(text_[line.begin])) {
    line.kind = Line::Kind::kOther;
    line.name = line.name_end = line.begin;
    return;
  }
  const std::string_view name(text_.data() + line.name, line.name_end - line.name);
  line.kind = EqualAscii(name, "BEGIN") ? Line::Kind::kBegin
              : EqualAscii(name, "END") ? Line::Kind::kEnd
                                        : Line::Kind::kProperty;
}

bool ContentLines::Is(size_t line, std::string_view name) const {
  return EqualAscii(Name(line), name);
}

std::string_view ContentLines::Name(size_t line) const {
  const Line& at = lines_[line];
  return std::string_view(text_).substr(at.name, at.name_end - at.name);
}

std::string_view ContentLines::Group(size_t line) const {
  const Line& at = lines_[line];
  if (at.name == at.begin) return {};
  return std::string_view(text_).substr(at.begin, at.name - at.begin - 1);
}

bool ContentLines::HasParameters(size_t line) const {
  const Line& at = lines_[line];
  return at.kind != Line::Kind::kOther && at.colon > at.name_end;
}

std::vector<Parameter> ContentLines::Parameters(size_t line) const {
  std::vector<Parameter> parameters;
  if (!HasParameters(line)) return parameters;
  const std::string header =
      WithoutStrayQuote(Unfold(lines_[line].name_end, lines_[line].colon, false));
  const std::string_view view = header;
  for (const ParameterSpan& span : FindParameters(view)) {
    const bool bare = span.name_end == std::string_view::npos;
    const size_t value = bare ? span.begin + 1 : span.name_end + 1;
    std::string name = bare ? "" : UpperAscii(view.substr(span.begin + 1, value - span.begin - 2));
    parameters.push_back({std::move(name), SplitParameter(view.substr(value, span.end - value))});
  }
  return parameters;
}

std::optional<std::string_view> ContentLines::PlainParameters(size_t line) const {
  const Line& at = lines_[line];
  if (!HasParameters(line)) return std::string_view();
  const std::string_view header(text_.data() + at.name_end, at.colon - at.name_end);
  if (header.find_first_of("\"^\n") != std::string_view::npos) return std::nullopt;
  return header;
}

std::string ContentLines::RawValue(size_t line) const {
  const Line& at = lines_[line];
  const size_t value = std::min(at.colon + 1, at.content_end);
  if (!at.folded) return text_.substr(value, at.content_end - value);
  return Unfold(value, at.content_end, at.quoted_printable);
}

std::string_view ContentLines::Bytes(size_t line) const { return Bytes(line, line + 1); }

std::string_view ContentLines::Bytes(size_t begin, size_t end) const {
  if (begin >= end) return {};
  const size_t start = lines_[begin].begin;
  return std::string_view(text_).substr(start, lines_[end - 1].end - start);
}

std::string ContentLines::Unfold(size_t begin, size_t end, bool quoted_printable) const {
  std::string out;
  while (begin < end) {
    const size_t next = std::min(EndOfLine(begin), end);
    const size_t content_end = WithoutLineEnd(begin, next);
    out.append(text_, begin, content_end - begin);
    const bool soft_break =
        quoted_printable && next > content_end && !out.empty() && text_[content_end - 1] == '=';
    if (soft_break) out.pop_back();
    begin = next + (soft_break || old_folding_ ? 0 : 1);
  }
  return out;
}

// --- Components ---

std::string_view ContentLines::ComponentName(size_t line) const {
  const Line& at = lines_[line];
  std::string_view name =
      std::string_view(text_).substr(at.colon + 1, at.content_end - at.colon - 1);
  while (!name.empty() && IsBlank(name.front())) name.remove_prefix(1);
  while (!name.empty() && IsBlank(name.back())) name.remove_suffix(1);
  return name;
}

// Every BEGIN gets its END. One without stays a line like any other.
void ContentLines::MatchComponents() {
  std::vector<uint32_t> open;
  for (uint32_t line = 0; line < lines_.size(); ++line) {
    if (lines_[line].kind == Line::Kind::kBegin) {
      lines_[line].partner = 0;
      open.push_back(line);
    }
    if (lines_[line].kind != Line::Kind::kEnd) continue;
    const size_t deepest = open.size() > kDeepest ? open.size() - kDeepest : 0;
    for (size_t i = open.size(); i-- > deepest;) {
      if (!EqualAscii(ComponentName(open[i]), ComponentName(line))) continue;
      lines_[open[i]].partner = line;
      open.resize(i);
      break;
    }
  }
}

size_t ContentLines::Next(size_t line) const {
  const Line& at = lines_[line];
  return at.kind == Line::Kind::kBegin && at.partner > 0 ? at.partner + 1 : line + 1;
}

bool ContentLines::IsBeginOf(size_t line, std::string_view name) const {
  return lines_[line].kind == Line::Kind::kBegin && EqualAscii(ComponentName(line), name);
}

std::optional<Component> ContentLines::FindComponent(std::string_view name, const Component& within,
                                                     size_t from) const {
  for (size_t line = std::max(within.begin + 1, from); line < within.end;) {
    if (IsBeginOf(line, name)) {
      if (lines_[line].partner > 0) return Component{line, lines_[line].partner};
      // Without an END, it ends before the next one of its kind.
      size_t end = line + 1;
      while (end < within.end && !IsBeginOf(end, name)) end = Next(end);
      return Component{line, std::min(end, within.end)};
    }
    line = Next(line);
  }
  return std::nullopt;
}

std::optional<size_t> ContentLines::Find(std::string_view name, const Component& within,
                                         size_t from, bool nested) const {
  for (size_t line = std::max(within.begin + 1, from); line < within.end;) {
    const Line& at = lines_[line];
    if (at.name_end - at.name == name.size() && Is(line, name)) return line;
    line = nested ? line + 1 : Next(line);
  }
  return std::nullopt;
}

// --- Editing ---

// Parameters longer than a line are folded; the name is not.
std::string ContentLines::FoldHeader(std::string_view header) const {
  if (header.size() < kLineLength || old_folding_) return std::string(header);
  std::string out;
  size_t column = 0;
  const size_t name_end = header.find(';');
  for (size_t i = 0; i < header.size(); ++i, ++column) {
    if (column >= kLineLength - 3 && i > name_end && (header[i] & 0xC0) != 0x80) {
      out.append(line_end_).append(" ");
      column = 1;
    }
    out += header[i];
  }
  return out;
}

// The header keeps the folds that it has.
std::string ContentLines::Fold(std::string_view header, std::string_view value) const {
  std::string out(header);
  out += ':';
  const size_t last_break = out.rfind('\n');
  size_t column = last_break == std::string::npos ? out.size() : out.size() - last_break - 1;
  const bool soft = IsQuotedPrintableHeader(header);
  if (old_folding_ && !soft) return out.append(value);
  while (column + value.size() > kLineLength) {
    size_t room = kLineLength > column ? kLineLength - column : 0;
    if (soft && room > 3) {
      room = SoftBreak(value, room);
    } else if (!soft) {
      while (room > 0 && (value[room] & 0xC0) == 0x80) --room;
    } else {
      room = 0;
    }
    // Bytes that continue no sequence are broken anywhere.
    if (room == 0 && column <= 1) room = kLineLength - 4;
    out.append(value.substr(0, room)).append(soft ? "=" : "").append(line_end_);
    if (!soft) out += ' ';
    column = 1;
    value.remove_prefix(room);
  }
  return out.append(value);
}

void ContentLines::MoveLines(size_t from, int64_t distance) {
  for (size_t i = from; i < lines_.size(); ++i) {
    Line& line = lines_[i];
    for (uint32_t* at :
         {&line.begin, &line.name, &line.name_end, &line.colon, &line.content_end, &line.end}) {
      *at = static_cast<uint32_t>(*at + distance);
    }
  }
}

void ContentLines::ReplaceContent(size_t line, std::string_view content) {
  const Line old = lines_[line];
  ++changes_;
  if (text_.size() + content.size() > kLongestText) throw AutomationError(kOutOfMemory);
  const size_t old_size = old.content_end - old.begin;
  text_.replace(old.begin, old_size, content);
  const int64_t distance = static_cast<int64_t>(content.size()) - static_cast<int64_t>(old_size);
  lines_[line] = ReadLine(old.begin);
  MoveLines(line + 1, distance);
}

void ContentLines::SetRawValue(size_t line, std::string_view value) {
  const Line& at = lines_[line];
  const std::string header = WithoutStrayQuote(text_.substr(at.begin, at.colon - at.begin));
  ReplaceContent(line, Fold(header, value));
}

void ContentLines::SetParameter(size_t line, std::string_view name, std::string_view value) {
  std::string header = WithoutStrayQuote(Unfold(lines_[line].begin, lines_[line].colon, false));
  const std::string parameter = value.empty() ? "" : FormatParameter(name, value);
  size_t place = header.size();
  size_t length = 0;
  for (const ParameterSpan& span : FindParameters(header)) {
    if (span.name_end == std::string::npos) continue;
    const size_t start = span.begin + 1;
    if (!EqualAscii(std::string_view(header).substr(start, span.name_end - start), name)) continue;
    place = span.begin;
    length = span.end - span.begin;
    break;
  }
  header.replace(place, length, parameter);
  Replace(line, header + ":" + RawValue(line));
}

void ContentLines::RemoveParameters(size_t line, bool (*drop)(const Parameter&)) {
  if (!HasParameters(line)) return;
  const std::vector<Parameter> parameters = Parameters(line);
  std::string header = WithoutStrayQuote(Unfold(lines_[line].begin, lines_[line].colon, false));
  const std::vector<ParameterSpan> spans = FindParameters(header);
  bool dropped = false;
  for (size_t i = spans.size(); i-- > 0;) {
    if (!drop(parameters[i])) continue;
    header.erase(spans[i].begin, spans[i].end - spans[i].begin);
    dropped = true;
  }
  if (dropped) Replace(line, header + ":" + RawValue(line));
}

void ContentLines::Insert(size_t before, std::string_view content) {
  const size_t place = before < lines_.size() ? lines_[before].begin : text_.size();
  std::string ends;
  if (before > 0) {
    const Line& previous = lines_[before - 1];
    if (previous.content_end == previous.end) ends += line_end_;
    // A last soft break would take the new line for more of its value.
    if (previous.quoted_printable && text_[previous.content_end - 1] == '=') ends += line_end_;
  }
  if (text_.size() + content.size() > kLongestText) throw AutomationError(kOutOfMemory);
  std::string bytes = ends;
  bytes += content;
  bytes += line_end_;
  text_.insert(place, bytes);
  if (before > 0 && !ends.empty()) lines_[before - 1] = ReadLine(lines_[before - 1].begin);
  MoveLines(before, static_cast<int64_t>(bytes.size()));
  const auto at = lines_.begin() + static_cast<std::ptrdiff_t>(before);
  lines_.insert(at, ReadLine(place + ends.size()));
  Replace(before, content);
  MatchComponents();
}

void ContentLines::Replace(size_t line, std::string_view content) {
  const size_t colon = FindColon(content, 0, content.size());
  if (colon == content.size()) return ReplaceContent(line, content);
  ReplaceContent(line, Fold(FoldHeader(content.substr(0, colon)), content.substr(colon + 1)));
}

void ContentLines::Remove(size_t line) {
  const Line old = lines_[line];
  ++changes_;
  text_.erase(old.begin, old.end - old.begin);
  lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(line));
  MoveLines(line, -static_cast<int64_t>(old.end - old.begin));
  MatchComponents();
}

// --- Parameters and values ---

const Parameter* FindParameter(const std::vector<Parameter>& parameters, std::string_view name) {
  for (const Parameter& parameter : parameters) {
    if (parameter.name == name) return &parameter;
  }
  return nullptr;
}

std::string FormatParameter(std::string_view name, std::string_view value) {
  std::string escaped;
  for (size_t i = 0; i < value.size(); ++i) {
    const char c = value[i];
    if (c == '\r' && i + 1 < value.size() && value[i + 1] == '\n') continue;
    if (c == '\r' || c == '\n') {
      escaped += "^n";
    } else if (c == '^' || c == '"') {
      escaped += c == '^' ? "^^" : "^'";
    } else {
      escaped += c;
    }
  }
  std::string out = ";" + std::string(name) + "=";
  const bool quote = value.empty() || value.find_first_of(":;,=") != std::string_view::npos ||
                     IsBlank(value.front()) || IsBlank(value.back());
  return quote ? out + '"' + escaped + '"' : out + escaped;
}

std::string EscapeText(std::string_view text) {
  // Neither format has a form for them; programs written in C end a text at the first NUL.
  const auto is_forbidden = [](char c) {
    return (static_cast<unsigned char>(c) < 0x20 && c != '\t') || c == 0x7F;
  };
  std::string out;
  out.reserve(text.size() + 8);
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
    if (c == '\r' || c == '\n') {
      out += "\\n";
    } else {
      if (c == ',' || c == ';' || c == '\\') out += '\\';
      out += is_forbidden(c) ? ' ' : c;
    }
  }
  return out;
}

std::string UnescapeText(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    const char next = text[i] == '\\' && i + 1 < text.size() ? text[i + 1] : '\0';
    if (next == 'n' || next == 'N') {
      out += '\n';
      ++i;
    } else if (next == ',' || next == ';' || next == '\\' || next == ':') {
      out += next;
      ++i;
    } else {
      out += text[i];
    }
  }
  return out;
}

String ReadText(std::string_view value) {
  if (value.find_first_of("\\\r\n") == std::string_view::npos) return FromUtf8(value);
  String text = FromUtf8(UnescapeText(value));
  if (text.find(u'\r') != String::npos) {
    text = ReplaceAll(ReplaceAll(text, u"\r\n", u"\n"), u"\r", u"\n");
  }
  return text.find(u'\n') == String::npos ? text : ReplaceAll(text, u"\n", u"\r\n");
}

std::string WriteText(StringView text) { return EscapeText(ToUtf8(text)); }

std::vector<std::string> SplitEscaped(std::string_view value, char separator) {
  std::vector<std::string> pieces;
  size_t start = 0;
  for (size_t i = 0; i <= value.size(); ++i) {
    if (i == value.size() || value[i] == separator) {
      pieces.emplace_back(value.substr(start, i - start));
      start = i + 1;
    } else if (value[i] == '\\' && i + 1 < value.size()) {
      ++i;
    }
  }
  return pieces;
}

}  // namespace kestrelon::desktop
