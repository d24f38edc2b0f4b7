#include "desktop/word/package/XmlScan.h"

#include <algorithm>

#include "desktop/word/package/ElementList.h"
#include "desktop/word/package/PackageError.h"

namespace kestrelon::desktop::word {

void XmlScan::Read(std::string_view piece) {
  if (piece.empty()) return;
  any_ = true;
  if (encoding_ == Encoding::kUnknown) encoding_ = FindEncoding(piece);
  if (encoding_ == Encoding::kBytes) {
    ReadBytes(piece);
  } else {
    ReadBytes(Narrow(piece));
  }
}

void XmlScan::Finish() const {
  if (!any_) return;
  if (!any_element_) RefuseXml(part_, "does not begin with an element");
  if (state_ != State::kText || depth_ != 0) RefuseXml(part_, "ends before its elements do");
}

XmlScan::Encoding XmlScan::FindEncoding(std::string_view start) const {
  if (start.starts_with("\xFF\xFE") || start.starts_with(std::string_view("<\0", 2))) {
    return Encoding::kLittleEndian;
  }
  if (start.starts_with("\xFE\xFF") || start.starts_with(std::string_view("\0<", 2))) {
    return Encoding::kBigEndian;
  }
  return Encoding::kBytes;
}

std::string XmlScan::Narrow(std::string_view piece) {
  std::string narrow;
  narrow.reserve(piece.size() / 2 + 1);
  for (const char byte : piece) {
    if (first_half_ < 0) {
      first_half_ = static_cast<unsigned char>(byte);
      continue;
    }
    const int second_half = static_cast<unsigned char>(byte);
    const bool is_little = encoding_ == Encoding::kLittleEndian;
    const int high = is_little ? second_half : first_half_;
    const int low = is_little ? first_half_ : second_half;
    narrow += high == 0 && low < 0x80 ? static_cast<char>(low) : 'x';
    first_half_ = -1;
  }
  return narrow;
}

void XmlScan::ReadBytes(std::string_view text) {
  size_t at = 0;
  while (at < text.size()) {
    switch (state_) {
      case State::kText:
        at = text.find('<', at);
        if (at == std::string_view::npos) return;
        ++at;
        Begin(State::kMarkup);
        break;
      case State::kMarkup:
        at = ReadMarkup(text, at);
        break;
      case State::kEndTag:
        at = text.find('>', at);
        if (at == std::string_view::npos) return;
        ++at;
        CloseElement();
        break;
      case State::kTag:
        at = ReadTag(text, at);
        break;
      case State::kQuoted:
        at = text.find(quote_, at);
        if (at == std::string_view::npos) return;
        ++at;
        state_ = State::kTag;
        break;
      case State::kComment:
        at = SkipTo("--", text, at);
        break;
      case State::kSection:
        at = SkipTo("]]", text, at);
        break;
      case State::kInstruction:
        at = SkipTo("?", text, at);
        break;
    }
  }
}

void XmlScan::Begin(State state) {
  state_ = state;
  last_ = ' ';
  markup_.clear();
  before_ = {};
}

size_t XmlScan::ReadMarkup(std::string_view text, size_t at) {
  constexpr std::string_view kComment = "!--";
  constexpr std::string_view kSection = "![CDATA[";
  const char c = text[at];
  if (markup_.empty() && c != '!') {
    if (c == '/') {
      Begin(State::kEndTag);
      return at + 1;
    }
    if (c == '?') {
      Begin(State::kInstruction);
      return at + 1;
    }
    OpenElement();
    Begin(State::kTag);
    return at;
  }
  markup_ += c;
  if (markup_ == kComment) {
    Begin(State::kComment);
  } else if (markup_ == kSection) {
    Begin(State::kSection);
  } else if (!kComment.starts_with(markup_) && !kSection.starts_with(markup_)) {
    RefuseXml(part_, "has a DOCTYPE, which documents may not have");
  }
  return at + 1;
}

size_t XmlScan::ReadTag(std::string_view text, size_t at) {
  const size_t begin = at;
  while (at < text.size() && text[at] != '>' && text[at] != '"' && text[at] != '\'') ++at;
  if (at > begin) last_ = text[at - 1];
  if (at == text.size()) return at;
  if (text[at] != '>') {
    quote_ = last_ = text[at];
    state_ = State::kQuoted;
  } else {
    if (last_ == '/') CloseElement();
    state_ = State::kText;
  }
  return at + 1;
}

size_t XmlScan::SkipTo(std::string_view closing, std::string_view text, size_t at) {
  const size_t end = std::min(text.find('>', at), text.size());
  const std::string_view skipped = text.substr(at, end - at);
  if (skipped.size() >= 2) {
    before_ = {skipped[skipped.size() - 2], skipped.back()};
  } else if (skipped.size() == 1) {
    before_ = {before_[1], skipped[0]};
  }
  if (end == text.size()) return end;
  if (std::string_view(before_.data(), 2).ends_with(closing)) {
    Begin(State::kText);
  } else {
    before_ = {before_[1], '>'};
  }
  return end + 1;
}

void XmlScan::OpenElement() {
  any_element_ = true;
  if (++depth_ > kDeepestNesting) RefuseXml(part_, "is nested deeper than 256 levels");
}

void XmlScan::CloseElement() {
  state_ = State::kText;
  if (--depth_ < 0) RefuseXml(part_, "closes an element that was never opened");
}

}  // namespace kestrelon::desktop::word
