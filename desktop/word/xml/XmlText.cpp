#include "desktop/word/xml/XmlText.h"

#include <algorithm>
#include <charconv>

#include "desktop/word/package/PackageError.h"

namespace kestrelon::desktop::word {
namespace {

[[noreturn]] void RefuseText(std::string_view what) {
  RefusePackage("its text holds " + std::string(what));
}

bool IsHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool IsLowSurrogate(char16_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

void AppendCodePoint(uint32_t code, String& text) {
  if (code < 0x10000) {
    text += static_cast<char16_t>(code);
    return;
  }
  text += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
  text += static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
}

// One sequence of two to four bytes; returns its length.
size_t DecodeSequence(std::string_view bytes, String& text) {
  const auto at = [&](size_t i) { return static_cast<unsigned char>(bytes[i]); };
  const unsigned char lead = at(0);
  const size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  constexpr uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  bool good = lead >= 0xC2 && lead <= 0xF4 && bytes.size() >= length;
  uint32_t code = lead & (0xFFu >> (length + 1));
  for (size_t i = 1; good && i < length; ++i) {
    good = (at(i) & 0xC0) == 0x80;
    code = (code << 6) | (at(i) & 0x3F);
  }
  good = good && code >= kSmallest[length] && code <= 0x10FFFF && (code >> 11) != 0x1B;
  if (!good) RefuseText("bytes that are not UTF-8");
  AppendCodePoint(code, text);
  return length;
}

uint32_t NumberedCode(std::string_view digits) {
  const bool hex = digits.starts_with('x');
  if (hex) digits.remove_prefix(1);
  uint32_t code = 0;
  const auto [end, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), code, hex ? 16 : 10);
  const bool good = error == std::errc() && end == digits.data() + digits.size() && code >= 0x09 &&
                    code <= 0x10FFFF && (code >> 11) != 0x1B;
  if (!good) RefuseText("a character reference to no character");
  return code;
}

// `raw` starts with "&"; returns the length of the reference.
size_t DecodeReference(std::string_view raw, String& text) {
  const size_t end = raw.substr(0, 16).find(';');
  if (end == std::string_view::npos) RefuseText("an unfinished reference");
  const std::string_view name = raw.substr(1, end - 1);
  if (name.starts_with('#')) {
    AppendCodePoint(std::max<uint32_t>(NumberedCode(name.substr(1)), ' '), text);
  } else if (name == "amp") {
    text += u'&';
  } else if (name == "lt") {
    text += u'<';
  } else if (name == "gt") {
    text += u'>';
  } else if (name == "quot") {
    text += u'"';
  } else if (name == "apos") {
    text += u'\'';
  } else {
    RefuseText("a reference to an entity that is not declared");
  }
  return end + 1;
}

// How many bytes from the first on are characters that stand for themselves.
size_t PlainRun(std::string_view raw, bool references) {
  size_t run = 1;
  while (run < raw.size() && raw[run] >= 0x20 && !(references && raw[run] == '&')) ++run;
  return run;
}

void DecodeCharacters(std::string_view raw, bool references, String& text) {
  for (size_t i = 0; i < raw.size();) {
    const auto byte = static_cast<unsigned char>(raw[i]);
    if (byte >= 0x80) {
      i += DecodeSequence(raw.substr(i), text);
    } else if (byte == '&' && references) {
      i += DecodeReference(raw.substr(i), text);
    } else if (byte < 0x20) {
      text += u' ';
      ++i;
    } else {
      const size_t run = PlainRun(raw.substr(i), references);
      text.resize(text.size() + run);
      std::copy_n(raw.begin() + static_cast<std::ptrdiff_t>(i), run,
                  text.end() - static_cast<std::ptrdiff_t>(run));
      i += run;
    }
  }
}

// The length of the markup that `raw` starts with.
size_t MarkupLength(std::string_view raw) {
  const std::string_view closing = raw.starts_with("<!--") ? "-->"
                                   : raw.starts_with("<?") ? "?>"
                                                           : ">";
  const size_t end = raw.find(closing);
  return end == std::string_view::npos ? raw.size() : end + closing.size();
}

std::string_view ReferenceFor(char byte) {
  switch (byte) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    default:
      return {};
  }
}

constexpr std::string_view kCData = "<![CDATA[";

}  // namespace

void DecodeXml(std::string_view raw, String& text) {
  text.reserve(text.size() + raw.size());
  while (!raw.empty()) {
    const size_t markup = raw.find('<');
    DecodeCharacters(raw.substr(0, markup), true, text);
    if (markup == std::string_view::npos) return;
    raw.remove_prefix(markup);
    if (raw.starts_with(kCData)) {
      const size_t end = raw.find("]]>");
      DecodeCharacters(raw.substr(kCData.size(), end - kCData.size()), false, text);
      raw.remove_prefix(end + 3);
    } else {
      raw.remove_prefix(MarkupLength(raw));
    }
  }
}

std::string DecodeXmlAttribute(std::string_view raw) {
  if (raw.find('&') == std::string_view::npos) return std::string(raw);
  String text;
  DecodeCharacters(raw, true, text);
  return ToUtf8(text);
}

void EncodeXml(StringView text, std::string& xml) {
  const auto is_plain = [](char16_t unit) {
    return unit < 0x80 && unit != u'&' && unit != u'<' && unit != u'>';
  };
  for (auto at = text.begin(); at != text.end();) {
    const auto special = std::find_if_not(at, text.end(), is_plain);
    xml.append(at, special);
    at = special;
    if (at == text.end()) return;
    if (*at < 0x80) {
      xml += ReferenceFor(static_cast<char>(*at++));
    } else {
      const auto ascii = std::find_if(at, text.end(), [](char16_t unit) { return unit < 0x80; });
      xml += ToUtf8(StringView(at, ascii));
      at = ascii;
    }
  }
}

String WithoutForbidden(StringView text) {
  String allowed;
  allowed.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    const char16_t unit = text[i];
    if (IsHighSurrogate(unit) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
      allowed += unit;
      allowed += text[++i];
      continue;
    }
    const bool control = unit < 0x20 && unit != u'\t' && unit != u'\n' && unit != u'\r';
    const bool surrogate = IsHighSurrogate(unit) || IsLowSurrogate(unit);
    if (!control && !surrogate && unit < 0xFFFE) allowed += unit;
  }
  return allowed;
}

}  // namespace kestrelon::desktop::word
