// Items before the user's eyes: in the program that the desktop has for their files.
#pragma once

#include <filesystem>
#include <string_view>

#include "automation/Text.h"

namespace kestrelon::desktop {

// Error 53 when the program that shows it cannot be started. Without any such program, nothing
// happens.
void ShowFile(const std::filesystem::path& file);
// The same for a private copy, named after `title`. `extension` with its dot.
void ShowCopy(const String& title, std::string_view extension, std::string_view content);

// A text as the name of a file, without what has a meaning in paths; "" where nothing is left.
String FileNameFrom(StringView text);

}  // namespace kestrelon::desktop
