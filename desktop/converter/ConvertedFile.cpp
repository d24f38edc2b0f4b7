#include "desktop/converter/ConvertedFile.h"

#include <algorithm>
#include <charconv>

#include "automation/Text.h"

namespace kestrelon::desktop {
namespace {

constexpr std::string_view kOldCharset = "charset=utf-8";
constexpr std::string_view kNewCharset = "charset=windows-1252";
constexpr std::string_view kCompoundFile = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";
// What stands in the HTML for a linked picture, which is never loaded: a PNG of its signature
// alone.
constexpr std::string_view kEmptyPicture = "src=\"data:image/png;base64,iVBORw0KGgo=\"";
// Of a document without dates; the office suite itself refuses a page with them.
constexpr std::string_view kEmptyDates[] = {"\t<meta name=\"created\" content=\"00:00:00\"/>\n",
                                            "\t<meta name=\"changed\" content=\"00:00:00\"/>\n"};
constexpr size_t kTail = 66 * 1024;  // holds a ZIP's end record with the longest comment

std::string_view Tail(std::string_view content) {
  return content.substr(content.size() - std::min(content.size(), kTail));
}

bool StartsIgnoringCase(std::string_view text, std::string_view start) {
  return text.size() >= start.size() &&
         std::equal(start.begin(), start.end(), text.begin(), [](char expected, char actual) {
           return expected == (actual >= 'A' && actual <= 'Z' ? actual - 'A' + 'a' : actual);
         });
}

bool IsHtml(std::string_view content) {
  const size_t start = content.find_first_not_of(" \t\r\n");
  if (start == std::string_view::npos) return false;
  content.remove_prefix(start);
  return (StartsIgnoringCase(content, "<!doctype html") || StartsIgnoringCase(content, "<html")) &&
         Tail(content).find("</html>") != std::string_view::npos;
}

bool IsPackage(std::string_view content) {
  return content.starts_with("PK\x03\x04") &&
         content.find("[Content_Types].xml") != std::string_view::npos &&
         Tail(content).find("PK\x05\x06") != std::string_view::npos;
}

bool IsHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; }

void AppendEscaped(std::string& html, uint32_t character, bool in_style) {
  char digits[8];
  const char* const end =
      std::to_chars(std::begin(digits), std::end(digits), character, in_style ? 16 : 10).ptr;
  html += in_style ? "\\" : "&#";
  html.append(digits, static_cast<size_t>(end - digits));
  html += in_style ? " " : ";";
}

void DropEmptyPictures(std::string& html) {
  for (size_t at = html.find(kEmptyPicture); at != std::string::npos;
       at = html.find(kEmptyPicture, at)) {
    const size_t start = html.rfind('<', at);
    const size_t end = html.find('>', at);
    if (start == std::string::npos || end == std::string::npos) return;
    html.erase(start, end + 1 - start);
    at = start;
  }
}

}  // namespace

bool HasSignature(std::string_view content, ConversionFormat format) {
  switch (format) {
    case ConversionFormat::kPdf:
      return content.starts_with("%PDF-") && Tail(content).find("%%EOF") != std::string_view::npos;
    case ConversionFormat::kDocx:
    case ConversionFormat::kXlsx:
      return IsPackage(content);
    case ConversionFormat::kDoc:
    case ConversionFormat::kXls:
      return content.starts_with(kCompoundFile);
    case ConversionFormat::kHtml:
      return IsHtml(content);
  }
  return false;
}

std::string FinishHtml(std::string_view utf8) {
  std::string source(utf8);
  DropEmptyPictures(source);
  for (const std::string_view date : kEmptyDates) {
    if (const size_t at = source.find(date); at != std::string::npos) source.erase(at, date.size());
  }
  if (const size_t at = source.find(kOldCharset); at != std::string::npos) {
    source.replace(at, kOldCharset.size(), kNewCharset);
  }
  const String text = FromUtf8(source);
  std::string html;
  html.reserve(text.size());
  bool in_style = false;
  for (size_t i = 0; i < text.size(); ++i) {
    const char16_t unit = text[i];
    if (unit == u'<') {
      const StringView rest = StringView(text).substr(i);
      in_style = rest.starts_with(u"<style") || (in_style && !rest.starts_with(u"</style"));
    }
    if (IsHighSurrogate(unit) && i + 1 < text.size()) {
      const uint32_t high = unit - 0xD800u;
      AppendEscaped(html, 0x10000 + (high << 10) + (text[++i] - 0xDC00u), in_style);
    } else if (const int code = AnsiCode(unit); code != '?' || unit == u'?') {
      html += static_cast<char>(code);
    } else {
      AppendEscaped(html, unit, in_style);
    }
  }
  return html;
}

}  // namespace kestrelon::desktop
