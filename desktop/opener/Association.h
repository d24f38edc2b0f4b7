// Which types of files the desktop has programs for: the shared lists of the user's programs and
// their types, which xdg-open goes by too.
#pragma once

#include <string>

namespace kestrelon::desktop {

// The MIME type of a file or folder. "application/octet-stream" when nothing else is known of it.
std::string TypeOfFile(const std::string& path);

// True when a program that is installed opens this type, or one that it is a kind of.
bool IsTypeAssociated(const std::string& type);

}  // namespace kestrelon::desktop
