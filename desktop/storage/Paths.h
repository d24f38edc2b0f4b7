// Paths as callers write them: "\" and "/" both separate.
#pragma once

#include <filesystem>

#include "automation/Text.h"

namespace kestrelon::desktop {

// Error 5 for text with a NUL character.
std::filesystem::path PathFromText(StringView text);
String TextFromPath(const std::filesystem::path& path);

// `path`, which is not empty, from the root on. Error 76 for a relative one when the current folder
// is gone.
std::filesystem::path AbsolutePath(const std::filesystem::path& path);

}  // namespace kestrelon::desktop
