#include "documents/QuoteServices.h"

#include <algorithm>

namespace kestrelon {
namespace {

constexpr char16_t kRemovalMark = u'¬';

// Position of the last separator, from 1; 0 for none.
size_t LastSeparator(StringView path) {
  const size_t index = path.find_last_of(u"/\\");
  return index == StringView::npos ? 0 : index + 1;
}

// Whether TextToHtml has anything to replace; most values hold nothing of the kind.
bool NeedsHtml(StringView text) {
  const auto is_special = [](char16_t c) { return c == u'&' || c == u'<' || c < u' '; };
  return std::any_of(text.begin(), text.end(), is_special) || text.find(u"  ") != StringView::npos;
}

}  // namespace

String TextToHtml(String text) {
  if (!NeedsHtml(text)) return text;
  const auto replace = [&text](StringView find, StringView replacement) {
    text = ReplaceAll(text, find, replacement);
  };
  // NOTE: the ";" of a character reference that reaches this as text stays.
  replace(u"&#xD", u"<br />");
  replace(u"&#xA", u"");
  replace(u"\r", u"<br />");
  replace(u"\n", u"<br />");
  replace(u"\t", u"&nbsp;&nbsp;&nbsp;&nbsp;");
  replace(u"  ", u"&nbsp;&nbsp;");
  // NOTE: a single pass, which makes one break of a CR LF and two of three line feeds.
  replace(u"<br /><br />", u"<br />");
  return text;
}

String EncodeBeyondAnsi(String html) {
  const auto is_beyond = [](char16_t unit) { return unit >= 0x80 && AnsiCode(unit) == u'?'; };
  if (std::none_of(html.begin(), html.end(), is_beyond)) return html;
  String encoded;
  for (size_t i = 0; i < html.size(); ++i) {
    if (!is_beyond(html[i])) {
      encoded += html[i];
      continue;
    }
    int32_t code = html[i];
    const bool is_pair =
        (code & 0xFC00) == 0xD800 && i + 1 < html.size() && (html[i + 1] & 0xFC00) == 0xDC00;
    if (is_pair) code = 0x10000 + ((code & 0x3FF) << 10) + (html[++i] & 0x3FF);
    encoded += u"&#" + Value(code).ToText() + u";";
  }
  return encoded;
}

String GetFolderFromPath(StringView path) {
  return Left(path, static_cast<int64_t>(LastSeparator(path)) - 1);
}

String GetFileNameFromPath(StringView path) { return String(path.substr(LastSeparator(path))); }

String MakeSafeFileName(String& text) {
  std::replace(text.begin(), text.end(), u' ', u'_');
  std::erase_if(text, [](char16_t character) {
    return character == u'<' || character == u'>' || character == kRemovalMark ||
           AnsiCode(character) < 32;
  });
  return text;
}

void DeleteFileQuietly(ControlContext& context, const String& path) {
  IgnoreFailures([&] {
    context.platform.CreateObject(u"Scripting.FileSystemObject").Call(u"DeleteFile", path, false);
  });
}

String NullToString(const Value& value) { return value.IsNull() ? String() : value.ToText(); }

}  // namespace kestrelon
