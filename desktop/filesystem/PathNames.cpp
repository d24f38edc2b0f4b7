#include "desktop/filesystem/PathNames.h"

namespace kestrelon::desktop {
namespace {

constexpr StringView kSeparators = u"\\/";

StringView WithoutEndSeparators(StringView path) {
  return path.substr(0, path.find_last_not_of(kSeparators) + 1);
}

}  // namespace

String BuildPath(StringView path, StringView name) {
  if (path.empty() || kSeparators.find(path.back()) != StringView::npos) {
    return String(path) + String(name);
  }
  return String(path) + u"/" + String(name);
}

String FileName(StringView path) {
  const StringView whole = WithoutEndSeparators(path);
  return String(whole.substr(whole.find_last_of(kSeparators) + 1));
}

String BaseName(StringView path) {
  const String name = FileName(path);
  return name.substr(0, name.rfind(u'.'));
}

String ExtensionName(StringView path) {
  const String name = FileName(path);
  const size_t dot = name.rfind(u'.');
  return dot == String::npos ? String() : name.substr(dot + 1);
}

String ParentFolderName(StringView path) {
  const StringView whole = WithoutEndSeparators(path);
  const size_t separator = whole.find_last_of(kSeparators);
  if (separator == StringView::npos) return {};
  const StringView parent = WithoutEndSeparators(whole.substr(0, separator));
  // The parent of a name in the root is the root itself.
  return String(parent.empty() ? whole.substr(0, 1) : parent);
}

}  // namespace kestrelon::desktop
