#include "desktop/outlook/formats/CardEncoding.h"

#include <iconv.h>

#include <algorithm>

#include "automation/Text.h"
#include "desktop/outlook/formats/ContentLines.h"

namespace kestrelon::desktop {
namespace {

constexpr std::string_view kLittleMark = "\xFF\xFE";
constexpr std::string_view kBigMark = "\xFE\xFF";

void AppendCode(std::string& out, uint32_t code) {
  if (code < 0x80) {
    out += static_cast<char>(code);
    return;
  }
  const int trailing = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
  constexpr int kLead[] = {0, 0xC0, 0xE0, 0xF0};
  out += static_cast<char>(kLead[trailing] | (code >> (6 * trailing)));
  for (int i = trailing - 1; i >= 0; --i) {
    out += static_cast<char>(0x80 | ((code >> (6 * i)) & 0x3F));
  }
}

// How many bytes the sequence at `at` has; 0 when it is malformed. Surrogates pass on request.
size_t SequenceLength(std::string_view bytes, size_t at, bool surrogates = false) {
  const auto byte = [&](size_t i) { return static_cast<unsigned char>(bytes[i]); };
  const unsigned char lead = byte(at);
  if (lead < 0x80) return 1;
  const size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || at + length > bytes.size()) return 0;
  for (size_t i = 1; i < length; ++i) {
    if ((byte(at + i) & 0xC0) != 0x80) return 0;
  }
  const unsigned char second = byte(at + 1);
  const bool wrong = (lead == 0xE0 && second < 0xA0) || (lead == 0xF0 && second < 0x90) ||
                     (lead == 0xF4 && second > 0x8F) ||
                     (lead == 0xED && second > 0x9F && !surrogates);
  return wrong ? 0 : length;
}

// Lone surrogates keep their code, so that they are written as they were.
std::string DecodeUtf16(std::string_view bytes, bool little) {
  const auto unit = [&](size_t at) -> uint32_t {
    const auto first = static_cast<unsigned char>(bytes[at]);
    const auto second = static_cast<unsigned char>(bytes[at + 1]);
    return little ? first | (second << 8) : (first << 8) | second;
  };
  std::string out;
  out.reserve(bytes.size() / 2);
  for (size_t at = 0; at + 1 < bytes.size(); at += 2) {
    uint32_t code = unit(at);
    if ((code & 0xFC00) == 0xD800 && at + 3 < bytes.size() && (unit(at + 2) & 0xFC00) == 0xDC00) {
      code = 0x10000 + ((code & 0x3FF) << 10) + (unit(at + 2) & 0x3FF);
      at += 2;
    }
    AppendCode(out, code);
  }
  return out;
}

std::string EncodeUtf16(std::string_view text, bool little) {
  std::string out;
  out.reserve(text.size() * 2);
  const auto append = [&](uint32_t unit) {
    const char high = static_cast<char>(unit >> 8);
    const char low = static_cast<char>(unit);
    out += little ? low : high;
    out += little ? high : low;
  };
  for (size_t at = 0; at < text.size();) {
    const size_t length = SequenceLength(text, at, true);
    uint32_t code = static_cast<unsigned char>(text[at]);
    if (length == 0) code = 0xFFFD;
    if (length > 1) code &= 0x7F >> length;
    for (size_t i = 1; i < length; ++i) {
      code = code << 6 | (static_cast<unsigned char>(text[at + i]) & 0x3F);
    }
    if (code >= 0x10000) {
      append(0xD800 + ((code - 0x10000) >> 10));
      code = 0xDC00 + ((code - 0x10000) & 0x3FF);
    }
    append(code);
    at += std::max<size_t>(length, 1);
  }
  return out;
}

std::string DecodeAnsi(std::string_view bytes) { return ToUtf8(FromAnsi(bytes)); }

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

}  // namespace

FileText DecodeFile(std::string content) {
  FileText file;
  const bool little = content.starts_with(kLittleMark);
  if (little || content.starts_with(kBigMark)) {
    file.encoding = little ? FileText::Encoding::kUtf16Little : FileText::Encoding::kUtf16Big;
    file.text = DecodeUtf16(std::string_view(content).substr(2), little);
    if (content.size() % 2 == 1) file.tail = content.back();
  } else {
    file.text = std::move(content);
  }
  file.returns =
      file.text.find('\n') == std::string::npos && file.text.find('\r') != std::string::npos;
  if (file.returns) std::ranges::replace(file.text, '\r', '\n');
  return file;
}

std::string EncodeFile(const FileText& file, std::string_view text) {
  std::string content(text);
  if (file.returns) std::ranges::replace(content, '\n', '\r');
  if (file.encoding == FileText::Encoding::kUtf8) return content;
  const bool little = file.encoding == FileText::Encoding::kUtf16Little;
  return std::string(little ? kLittleMark : kBigMark) + EncodeUtf16(content, little) + file.tail;
}

bool IsAscii(std::string_view bytes) {
  return std::none_of(bytes.begin(), bytes.end(), [](char c) { return (c & 0x80) != 0; });
}

bool IsUtf8(std::string_view bytes) {
  for (size_t at = 0; at < bytes.size();) {
    const size_t length = SequenceLength(bytes, at);
    if (length == 0) return false;
    at += length;
  }
  return true;
}

std::string DecodeCharset(std::string_view bytes, std::string_view charset) {
  if (IsAscii(bytes) && !EqualAscii(charset.substr(0, 6), "UTF-16") &&
      !EqualAscii(charset.substr(0, 8), "ISO-2022")) {
    return std::string(bytes);
  }
  if (charset.empty() || EqualAscii(charset, "UTF-8")) {
    return IsUtf8(bytes) ? std::string(bytes) : DecodeAnsi(bytes);
  }
  const iconv_t converter = iconv_open("UTF-8", std::string(charset).c_str());
  // iconv_open says so by this value.
  if (converter == reinterpret_cast<iconv_t>(-1)) return DecodeAnsi(bytes);
  std::string in(bytes);
  std::string out(bytes.size() * 4 + 4, '\0');
  char* from = in.data();
  char* to = out.data();
  size_t left = in.size();
  size_t room = out.size();
  const bool failed = iconv(converter, &from, &left, &to, &room) == static_cast<size_t>(-1);
  iconv_close(converter);
  out.resize(out.size() - room);
  return failed ? DecodeAnsi(bytes) : out;
}

std::string DecodeQuotedPrintable(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    const int high = text[i] == '=' && i + 2 < text.size() ? HexDigit(text[i + 1]) : -1;
    const int low = high >= 0 ? HexDigit(text[i + 2]) : -1;
    if (low < 0) {
      out += text[i];
    } else {
      out += static_cast<char>(high << 4 | low);
      i += 2;
    }
  }
  return out;
}

std::string EncodeQuotedPrintable(std::string_view bytes) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string out;
  for (size_t i = 0; i < bytes.size(); ++i) {
    const auto byte = static_cast<unsigned char>(bytes[i]);
    const bool last_blank = byte == ' ' && i + 1 == bytes.size();
    if (byte < 0x20 || byte > 0x7E || byte == '=' || last_blank) {
      out += '=';
      out += kDigits[byte >> 4];
      out += kDigits[byte & 0xF];
    } else {
      out += static_cast<char>(byte);
    }
  }
  return out;
}

std::string DecodeBase64(std::string_view text) {
  std::string out;
  uint32_t bits = 0;
  int count = 0;
  for (const char c : text) {
    int digit = c == '+' ? 62 : c == '/' ? 63 : -1;
    if (c >= 'A' && c <= 'Z') digit = c - 'A';
    if (c >= 'a' && c <= 'z') digit = c - 'a' + 26;
    if (c >= '0' && c <= '9') digit = c - '0' + 52;
    if (digit < 0) continue;
    bits = bits << 6 | static_cast<uint32_t>(digit);
    count += 6;
    if (count < 8) continue;
    count -= 8;
    out += static_cast<char>(bits >> count & 0xFF);
  }
  return out;
}

}  // namespace kestrelon::desktop
