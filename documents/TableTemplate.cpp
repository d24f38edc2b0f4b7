#include "documents/TableTemplate.h"

#include <algorithm>

#include "Control/FileAccess.h"
#include "Control/LocaleAndEnvironment.h"
#include "documents/QuoteServices.h"
#include "documents/TagData.h"
#include "documents/TagReplacement.h"
#include "documents/WordConstants.h"

namespace kestrelon {
namespace {

constexpr StringView kTag = u"<htmltable>";

bool IsOnServer(StringView path) { return path.starts_with(u"http") || path.starts_with(u"ftp"); }

bool IsAbsolute(StringView path) {
  return path.starts_with(u'/') || path.starts_with(u'\\') || path.substr(0, 2).ends_with(u':');
}

// How many marks end the text: of a paragraph, and in a table those of a cell and of its row.
int32_t CountMarks(StringView text) {
  int32_t count = 0;
  while (!text.empty() && StringView(u"\r\f\a").find(text.back()) != StringView::npos) {
    text.remove_suffix(text.ends_with(u"\r\a") ? 2 : 1);
    ++count;
  }
  return count;
}

// What a reader sees of a link: its address, which Word makes one of, stands before that.
String WithoutFieldCodes(StringView text) {
  constexpr char16_t kBegin = 0x13;
  constexpr char16_t kSeparator = 0x14;
  String seen;
  bool is_code = false;
  for (const char16_t unit : text) {
    if (unit == kBegin) is_code = true;
    if (!is_code) seen += unit;
    if (unit == kSeparator) is_code = false;
  }
  return seen;
}

// The folder of `strTemplate` keeps its separator; "" where it has none.
String ResolvePath(const String& path, const String& strTemplate) {
  if (IsOnServer(path) || IsAbsolute(path)) return path;
  return strTemplate.substr(0, strTemplate.size() - GetFileNameFromPath(strTemplate).size()) + path;
}

}  // namespace

std::optional<String> TakeTableTemplatePath(const Object& wordApp, const String& strTemplate) {
  const Object selection = wordApp.GetChild(u"Selection");
  if (!FindAndSelect(selection, String(kTag))) return std::nullopt;
  selection.Call(u"MoveDown", Named(u"Unit", wdParagraph), Named(u"Extend", wdExtend));
  const String text = selection.Get(u"Text").ToText();
  // The paragraph's mark stays: where a table follows, the selection would end up inside it.
  const int32_t marks = CountMarks(text);
  if (marks > 0) selection.Call(u"MoveEnd", wdCharacter, -marks);
  selection.Call(u"Delete");
  const String seen = WithoutFieldCodes(text);
  const StringView path = StringView(seen).substr(std::min(seen.size(), kTag.size()));
  return ResolvePath(CleanCellText(path), strTemplate);
}

String FetchTemplateFile(ControlContext& context, const String& path) {
  if (!IsOnServer(path)) return path;
  const Object request = context.platform.CreateObject(u"microsoft.xmlhttp");
  request.Call(u"open", u"GET", path, false);
  request.Call(u"setRequestHeader", u"Content-type:", u"text/xml");
  // The file itself, not what the server makes of it.
  request.Call(u"setRequestHeader", u"Translate:", u"f");
  request.Call(u"send");
  const String local_path = GetTheTempPath(context) + GetFileNameFromPath(path);
  WriteTextFile(context, local_path, EncodeBeyondAnsi(request.Get(u"responseText").ToText()));
  return local_path;
}

String CopyTableTemplate(ControlContext& context, const String& path) {
  const String fetched = FetchTemplateFile(context, path);
  if (fetched != path) return fetched;
  // Its name is never that of the template, which may lie in the same folder.
  const String copy = GetTheTempPath(context) + u"Kestrelon" + GetFileNameFromPath(path);
  context.platform.CreateObject(u"Scripting.FileSystemObject").Call(u"CopyFile", path, copy, true);
  return copy;
}

void InsertTableFile(const Object& wordApp, const String& path) {
  wordApp.Call(u"ChangeFileOpenDirectory", GetFolderFromPath(path));
  wordApp.GetChild(u"Selection")
      .GetChild(u"Range")
      .Call(u"InsertFile", Named(u"FileName", GetFileNameFromPath(path)),
            Named(u"ConfirmConversions", false), Named(u"link", false),
            Named(u"Attachment", false));
}

}  // namespace kestrelon
