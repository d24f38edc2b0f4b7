// Paths as callers write them: "\" and "/" both separate.
#pragma once

#include <filesystem>

#include "automation/Text.h"

namespace kestrelon::desktop {

std::filesystem::path PathFromText(StringView text);
String TextFromPath(const std::filesystem::path& path);

}  // namespace kestrelon::desktop
