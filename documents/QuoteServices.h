// The small services of quotes: texts for HTML, paths and names of files.
#pragma once

#include "Control/ObjectState.h"

namespace kestrelon {

// `text` as it stands between HTML tags: line breaks, tabs and pairs of blanks become what shows
// them. A single pass, so a CR LF is one break and three line feeds are two.
String TextToHtml(String text);

// HTML that is to become ANSI text: characters beyond that become numeric character references.
String EncodeBeyondAnsi(String html);

// What stands before the last "/" or "\\", and behind it. A path without either has no folder,
// which is error 5, and is all name.
String GetFolderFromPath(StringView path);
String GetFileNameFromPath(StringView path);

// `text` without angle brackets, control characters and "¬", and with "_" for blanks; `text` itself
// becomes so too.
String MakeSafeFileName(String& text);

// Never fails; a file that is not there is no failure.
void DeleteFileQuietly(ControlContext& context, const String& path);

// "" for Null.
String NullToString(const Value& value);

}  // namespace kestrelon
