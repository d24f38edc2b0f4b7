// Paths as text, whether the files exist or not. "\" and "/" both separate.
#pragma once

#include "automation/Text.h"

namespace kestrelon::desktop {

// One separator between the two; none is added to an empty path.
String BuildPath(StringView path, StringView name);
// The last name; separators at the end do not count.
String FileName(StringView path);
// The last name without its extension.
String BaseName(StringView path);
// What follows the last "." of the last name; "" without one.
String ExtensionName(StringView path);
// What stands before the last name; "" for a single name and for the root.
String ParentFolderName(StringView path);

}  // namespace kestrelon::desktop
