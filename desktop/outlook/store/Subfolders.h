// Which folders lie in a folder of the disk.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace kestrelon::desktop {

// Whether that is a folder we enter: one that is there, and no link of another user.
bool IsFolder(const std::filesystem::path& path);
// File names of the visible ones, by name.
std::vector<std::string> FolderNamesIn(const std::filesystem::path& path);

}  // namespace kestrelon::desktop
