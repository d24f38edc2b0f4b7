#include "Control/FileAccess.h"

#include <utility>

namespace kestrelon {
namespace {

constexpr int32_t kForReading = 1;
constexpr int32_t kForWriting = 2;
constexpr int32_t kAnsiText = 0;

Object OpenTextFile(ControlContext& context, const String& path, int32_t mode) {
  const Object files = context.platform.CreateObject(u"Scripting.FileSystemObject");
  return files.CallChild(u"OpenTextFile", path, mode, false, kAnsiText);
}

void WriteAndClose(const Object& stream, String text) {
  stream.Call(u"Write", std::move(text));
  stream.Call(u"Close");
}

}  // namespace

Object FileSystemOf(ControlContext& context) {
  Object& files = context.state.file_system;
  if (!files) files = context.platform.CreateObject(u"Scripting.FileSystemObject");
  return files;
}

String ReadTextFile(ControlContext& context, const String& path) {
  const Object stream = OpenTextFile(context, path, kForReading);
  const String text = stream.Call(u"ReadAll").ToText();
  stream.Call(u"Close");
  return text;
}

void RewriteTextFile(ControlContext& context, const String& path, String text) {
  WriteAndClose(OpenTextFile(context, path, kForWriting), std::move(text));
}

void WriteTextFile(ControlContext& context, const String& path, String text) {
  const Object files = context.platform.CreateObject(u"Scripting.FileSystemObject");
  WriteAndClose(files.CallChild(u"CreateTextFile", path, true), std::move(text));
}

}  // namespace kestrelon
