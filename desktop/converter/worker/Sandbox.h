// What the kernel keeps the office suite from, whatever a document asks of it.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace kestrelon::desktop {

// From now on this process and its children reach no network, write only below `writable`, and read
// only that, the folders in `readable` and what programs commonly need of the system (libraries,
// fonts). Needs no privileges. Returns nothing on success, else what could not be set up.
//
// A kernel without Landlock leaves files as readable as they were, which is no failure: the office
// suite's own settings refuse links, too.
std::string EnterSandbox(const std::filesystem::path& writable,
                         const std::vector<std::filesystem::path>& readable);

}  // namespace kestrelon::desktop
