// The private profile that a worker runs with.
#pragma once

#include <filesystem>

namespace kestrelon::desktop {

// Fills the empty folder `folder`: the office suite's settings (macros off, no links followed, no
// recovery), and home, scratch and job folders. The user's own fonts stay reachable through links
// in the home folder.
void CreateProfile(const std::filesystem::path& folder);

}  // namespace kestrelon::desktop
