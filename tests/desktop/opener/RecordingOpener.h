// An opener that tells what it was started with.
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "desktop/storage/AtomicFile.h"
#include "tests/desktop/converter/ConverterWorld.h"

namespace kestrelon::desktop {

class RecordingOpener {
 public:
  // `report` is a shell word: what of a start is told.
  explicit RecordingOpener(const std::string& report = "$1") {
    const std::string pipe = folder_.path() / "pipe";
    mkfifo(pipe.c_str(), 0600);
    pipe_ = open(pipe.c_str(), O_RDWR | O_CLOEXEC);
    WriteFileAtomically(program(), "#!/bin/sh\nprintf '%s\\n' \"" + report + "\" > " + pipe + "\n");
    std::filesystem::permissions(program(), std::filesystem::perms::owner_all);
  }
  ~RecordingOpener() { close(pipe_); }

  std::filesystem::path program() const { return folder_.path() / "opener"; }
  // What the next start told; "nothing" when none comes.
  std::string Next() const {
    pollfd waiting{pipe_, POLLIN, 0};
    if (poll(&waiting, 1, 10'000) != 1) return "nothing";
    std::string line;
    for (char letter = 0; read(pipe_, &letter, 1) == 1 && letter != '\n';) line += letter;
    return line;
  }

 private:
  PrivateFolder folder_{"kestrelon-opener-test-"};
  int pipe_ = -1;
  ChangedEnvironment variable_{"KESTRELON_OPENER", program().string()};
};

}  // namespace kestrelon::desktop
