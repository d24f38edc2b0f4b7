// Between the three kinds of text: the control's own (UTF-16), its ANSI texts (Windows-1252), and
// those of the system's ANSI functions, whose code page is the user's.
#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "platform/windows/Win32.h"

namespace kestrelon {

// Windows-1252. Every unit gives one byte: its own, that of the nearest character, or "?".
std::string NearestAnsi(StringView text);

// The path of a file or folder in Windows-1252: as it is, by its short name, or in the nearest
// characters when neither has an exact form.
std::string AnsiPath(const String& path);

// The texts for an ANSI function of the system, in their order. Nothing when one of them has no
// exact form there: the wide function is to be used then. A NUL within a text stays in it, and ends
// it for either function.
std::optional<std::vector<std::string>> InSystemCodePage(std::initializer_list<StringView> texts);

}  // namespace kestrelon
