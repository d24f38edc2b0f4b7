#include "files/Uploading.h"

#include "Control/FileAccess.h"

namespace kestrelon {
namespace {

// The file's whole text; "" when it cannot be read.
String ReadFileText(ControlContext& context, const String& path) {
  String text;
  IgnoreFailures([&] { text = ReadTextFile(context, path); });
  return text;
}

void PutText(ControlContext& context, const String& url, const String& text) {
  const Object request = context.platform.CreateObject(u"MSXML2.XMLHTTP.3.0");
  request.Call(u"open", u"PUT", url, false);
  request.Call(u"send", text);
}

}  // namespace

bool UploadFile(ControlContext& context, String& filePath, String& ImportDirectory) {
  const String content = ReadFileText(context, filePath);
  if (content.empty()) return false;
  const String name = filePath.substr(filePath.find_last_of(u"\\/") + 1);
  const String url = ImportDirectory + (ImportDirectory.ends_with(u'/') ? u"" : u"/") + name;
  // NOTE: the status is not asked for: what the server makes of the file is between it and the
  // page.
  return !IgnoreFailures([&] { PutText(context, url, content); });
}

}  // namespace kestrelon
