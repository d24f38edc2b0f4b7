#include "desktop/outlook/mail/MessageHeaders.h"

#include <algorithm>

namespace kestrelon::desktop {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

char LowerAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

std::string_view WithoutWhiteSpace(std::string_view text) {
  const size_t begin = text.find_first_not_of(" \t\r\n");
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(" \t\r\n") - begin + 1);
}

}  // namespace

MessageHeaders::MessageHeaders(std::string message) : message_(std::move(message)) {
  const std::string_view text = message_;
  if (text.starts_with(kByteOrderMark)) start_ = kByteOrderMark.size();
  // What a file of several mails begins each one with.
  const size_t line_feed = text.find('\n', start_);
  if (text.substr(start_).starts_with("From ") && line_feed != std::string_view::npos) {
    start_ = line_feed + 1;
  }
  ReadFields();
}

void MessageHeaders::ReadFields() {
  fields_.clear();
  const std::string_view text = message_;
  for (size_t begin = start_; begin < text.size();) {
    const size_t line_feed = text.find('\n', begin);
    const size_t end = line_feed == std::string_view::npos ? text.size() : line_feed + 1;
    const std::string_view line = text.substr(begin, end - begin);
    if (line[0] == ' ' || line[0] == '\t') {
      if (fields_.empty()) return;
      fields_.back().end = end;
    } else {
      const size_t colon = line.find(':');
      const std::string_view name = line.substr(0, colon);
      if (colon == std::string_view::npos || WithoutWhiteSpace(name).empty()) return;
      fields_.push_back({begin, begin + colon, end});
    }
    begin = end;
  }
}

bool MessageHeaders::Is(size_t field, std::string_view name) const {
  const HeaderField& f = fields_[field];
  const std::string_view found =
      WithoutWhiteSpace(std::string_view(message_).substr(f.begin, f.colon - f.begin));
  return std::equal(found.begin(), found.end(), name.begin(), name.end(),
                    [](char a, char b) { return LowerAscii(a) == LowerAscii(b); });
}

std::string_view MessageHeaders::Value(size_t field) const {
  const HeaderField& f = fields_[field];
  return WithoutWhiteSpace(std::string_view(message_).substr(f.colon + 1, f.end - f.colon - 1));
}

std::string_view MessageHeaders::Find(std::string_view name) const {
  for (size_t i = 0; i < size(); ++i) {
    if (Is(i, name)) return Value(i);
  }
  return {};
}

std::string MessageHeaders::FindAll(std::string_view name) const {
  std::string all;
  for (size_t i = 0; i < size(); ++i) {
    if (!Is(i, name) || Value(i).empty()) continue;
    if (!all.empty()) all += ", ";
    all += Value(i);
  }
  return all;
}

void MessageHeaders::Insert(size_t before, std::string_view name, std::string_view value) {
  const size_t at = before < size()   ? fields_[before].begin
                    : fields_.empty() ? start_
                                      : fields_.back().end;
  std::string text = Format(name, value);
  if (at > start_ && message_[at - 1] != '\n') text.insert(0, LineEnd());
  // A message without headers may begin with what would be taken for one.
  const bool has_end = at < message_.size() && (message_[at] == '\r' || message_[at] == '\n');
  if (fields_.empty() && !has_end) text += LineEnd();
  Splice(at, at, text);
}

void MessageHeaders::Replace(size_t field, std::string_view name, std::string_view value) {
  Splice(fields_[field].begin, fields_[field].end, Format(name, value));
}

void MessageHeaders::Remove(size_t field) { Splice(fields_[field].begin, fields_[field].end, {}); }

void MessageHeaders::Splice(size_t begin, size_t end, std::string_view text) {
  message_.replace(begin, end - begin, text);
  ReadFields();
}

std::string_view MessageHeaders::LineEnd() const {
  const size_t line_feed = message_.find('\n');
  const bool is_unix =
      line_feed != std::string::npos && (line_feed == 0 || message_[line_feed - 1] != '\r');
  return is_unix ? "\n" : "\r\n";
}

// Folded at the blanks of the value, with the line ends that the message has.
std::string MessageHeaders::Format(std::string_view name, std::string_view value) const {
  constexpr size_t kLongestLine = 78;
  const std::string_view line_end = LineEnd();
  std::string field(name);
  field += ':';
  size_t length = field.size();
  while (!value.empty()) {
    const std::string_view word = value.substr(0, value.find(' '));
    if (length + 1 + word.size() > kLongestLine) {
      field += line_end;
      length = 0;
    }
    field += ' ';
    field += word;
    length += 1 + word.size();
    value.remove_prefix(std::min(value.size(), word.size() + 1));
  }
  return field + std::string(line_end);
}

}  // namespace kestrelon::desktop
