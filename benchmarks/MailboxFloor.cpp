#include "benchmarks/MailboxFloor.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <string>

namespace kestrelon::benchmarks {
namespace {

namespace fs = std::filesystem;

int Open(const fs::path& path, int flags) {
  const int file = open(path.c_str(), flags | O_CLOEXEC, 0600);
  if (file < 0) throw std::runtime_error("cannot open " + path.string());
  return file;
}

void Sync(int file) {
  if (fsync(file) != 0) throw std::runtime_error("cannot sync");
}

}  // namespace

size_t ReadEveryFile(const fs::path& folder) {
  static std::array<char, 1 << 16> buffer;
  size_t bytes = 0;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    const int file = Open(entry.path(), O_RDONLY);
    for (ssize_t got = 1; got > 0; bytes += static_cast<size_t>(got > 0 ? got : 0)) {
      got = read(file, buffer.data(), buffer.size());
    }
    close(file);
  }
  return bytes;
}

void WriteOneFile(const fs::path& folder, const fs::path& name, std::string_view content) {
  const fs::path temporary = folder / (".tmp-" + name.string());
  const int file = Open(temporary, O_WRONLY | O_CREAT | O_EXCL);
  const bool is_written =
      write(file, content.data(), content.size()) == static_cast<ssize_t>(content.size());
  if (!is_written) throw std::runtime_error("cannot write " + temporary.string());
  Sync(file);
  close(file);
  fs::rename(temporary, folder / name);
  const int directory = Open(folder, O_RDONLY | O_DIRECTORY);
  Sync(directory);
  close(directory);
}

}  // namespace kestrelon::benchmarks
