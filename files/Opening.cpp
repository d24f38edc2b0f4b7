#include "files/Opening.h"

#include <algorithm>
#include <array>

#include "Control/OfficeConnection.h"

namespace kestrelon {
namespace {

// NOTE: the lists are short; a newer document, as .xlsx or .docm, goes through the shell, to the
// program that the user has chosen for it.
constexpr std::array<StringView, 4> kWordExtensions = {u"doc", u"docx", u"dot", u"rtf"};
constexpr std::array<StringView, 2> kExcelExtensions = {u"xls", u"xlt"};

constexpr int32_t kNormalWindow = 1;
constexpr int32_t kLastFailure = 32;

struct ShellFailure {
  int32_t code;
  StringView message;
};

// NOTE: 2 and 3 are told in different words; users quote these texts to their support.
constexpr std::array<ShellFailure, 6> kShellFailures = {{
    {2,
     u"Unable to open the file because it could not be found at the path specified. Ensure this "
     u"file still exists"},
    {3,
     u"Unable to open the file because it cannot be found. Ensure this file path currently "
     u"exists"},
    {5, u"Unable to open the file because access was denied"},
    {26, u"Unable to open the file because a sharing violation has occurred"},
    {27,
     u"Unable to open the file because an invalid or incomplete file association exists. Ensure "
     u"you have an application installed capable on rendering this file type"},
    {31,
     u"Unable to open the file because no file association exists for this file type. Ensure you "
     u"have an application installed capable on rendering this file type"},
}};

// What follows the last "." in lower case, without blanks at its ends; the whole path without one.
String GetFileExtension(const String& path) {
  // A path without a dot has npos, and npos + 1 is its beginning.
  return LowerCase(Trim(StringView(path).substr(path.rfind(u'.') + 1)));
}

// "" when the shell took the file, else why it could not.
String ShellOpenFile(ControlContext& context, const String& path) {
  Platform& platform = context.platform;
  const int32_t code = platform.ShellExecute(platform.GetDesktopWindow(), u"Open", path, u"",
                                             u"C:\\", kNormalWindow);
  if (code > kLastFailure) return {};
  for (const ShellFailure& failure : kShellFailures) {
    if (failure.code == code) return String(failure.message);
  }
  return u"Unable to open this file. An unknown error has occurred";
}

template <typename Extensions>
bool IsOneOf(const String& extension, const Extensions& extensions) {
  return std::find(extensions.begin(), extensions.end(), extension) != extensions.end();
}

void OpenInOffice(const Object& application, StringView documents, const String& path) {
  if (application.IsNothing()) return;
  IgnoreFailures([&] { application.GetChild(documents).Call(u"open", path); },
                 [&] { application.Put(u"Visible", true); });
}

}  // namespace

String OpenFile(ControlContext& context, String& filePath, bool& ManagedStorage) {
  if (!ManagedStorage) return ShellOpenFile(context, filePath);
  const String extension = GetFileExtension(filePath);
  if (IsOneOf(extension, kWordExtensions)) {
    OpenInOffice(StartWord(context), u"Documents", filePath);
  } else if (IsOneOf(extension, kExcelExtensions)) {
    OpenInOffice(StartExcel(context), u"Workbooks", filePath);
  } else {
    return ShellOpenFile(context, filePath);
  }
  return {};
}

}  // namespace kestrelon
