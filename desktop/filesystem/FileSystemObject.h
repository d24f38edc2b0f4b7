// "Scripting.FileSystemObject": files and folders of this machine.
//
// "\" and "/" both separate the names of a path. Text files are ANSI (Windows-1252) or, when asked,
// UTF-16LE with a byte order mark. Errors: 53 and 76 for a missing file or folder, 58 for one that
// is there already, 70 where permission is missing, 54 for reading from what was opened for writing
// and the other way round, 62 for reading past the end.
#pragma once

#include "automation/DispatchObject.h"

namespace kestrelon::desktop {

Object CreateFileSystemObject();

}  // namespace kestrelon::desktop
