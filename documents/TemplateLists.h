// The templates that a page offers, and files that it looks for.
#pragma once

#include "Control/ObjectState.h"

namespace kestrelon {

// The Word templates of a disk folder, each followed by "\\", or all that a web folder lists,
// separated by "\\"; "Empty" for none. A list type other than the four kinds of address names a
// subfolder. A failure is told in a message box.
String GetTemplateList(ControlContext& context, String& folderpath, String& listtype);

// True when the folder has a file of exactly this name; otherwise the user is told.
bool FindFile(ControlContext& context, String& path);

}  // namespace kestrelon
