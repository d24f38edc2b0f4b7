// What no mailbox program can do without: reading the files of a folder, and writing one safely.
#pragma once

#include <filesystem>
#include <string_view>

namespace kestrelon::benchmarks {

// Opens and reads every file of the folder; the bytes read, so that nothing is optimised away.
size_t ReadEveryFile(const std::filesystem::path& folder);

// A new file that is there after a power loss or not at all: temporary file, fsync, rename, fsync
// of the folder.
void WriteOneFile(const std::filesystem::path& folder, const std::filesystem::path& name,
                  std::string_view content);

}  // namespace kestrelon::benchmarks
