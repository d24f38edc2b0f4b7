// Files, as scripts reach them: through Scripting.FileSystemObject, texts in ANSI.
#pragma once

#include "Control/ObjectState.h"

namespace kestrelon {

// The file-system object that the control creates on first use and keeps.
Object FileSystemOf(ControlContext& context);

// The whole text of a file. Failures are the caller's, error 62 for an empty file among them.
String ReadTextFile(ControlContext& context, const String& path);

// Replaces what the file holds by `text`. Failures are the caller's, error 53 for a missing file
// among them.
void RewriteTextFile(ControlContext& context, const String& path, String text);

// The same, whether the file is there or not.
void WriteTextFile(ControlContext& context, const String& path, String text);

}  // namespace kestrelon
