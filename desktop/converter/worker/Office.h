// The conversions themselves, in the process that the office suite is loaded into.
#pragma once

#include <filesystem>

namespace kestrelon::desktop {

// Loads LibreOffice from `program_folder` with the profile in `private_folder`, then answers
// requests until the socket closes. Returns the exit status.
int ServeConversions(const std::filesystem::path& program_folder,
                     const std::filesystem::path& private_folder);

}  // namespace kestrelon::desktop
