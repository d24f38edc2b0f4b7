// Names of folders and of other users as file names: "/", "%", control characters and a leading "."
// stand as %XX.
#pragma once

#include <string>
#include <string_view>

#include "automation/Text.h"

namespace kestrelon::desktop {

// Error 5, with the reason, for a name that no folder can have: an empty one, or one of more than
// 255 bytes as a file name.
std::string FileNameFromName(StringView name);
// A "%" that no two hexadecimal digits follow stands for itself.
String NameFromFileName(std::string_view file_name);

}  // namespace kestrelon::desktop
