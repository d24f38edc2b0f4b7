#include "desktop/opener/Opener.h"

#include <fcntl.h>
#include <linux/close_range.h>
#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

#include "desktop/opener/Association.h"

namespace kestrelon::desktop {
namespace {

std::string Environment(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

// The executable file that `name` stands for; "" when there is none.
std::string FindProgram(const std::string& name) {
  if (name.find('/') != std::string::npos) return access(name.c_str(), X_OK) == 0 ? name : "";
  const std::string path = Environment("PATH");
  std::string_view rest = path;
  while (!rest.empty()) {
    const std::string_view folder = rest.substr(0, rest.find(':'));
    const std::string candidate = std::string(folder) + "/" + name;
    if (!folder.empty() && access(candidate.c_str(), X_OK) == 0) return candidate;
    rest.remove_prefix(std::min(folder.size() + 1, rest.size()));
  }
  return "";
}

bool HasDisplay() {
  return !Environment("DISPLAY").empty() || !Environment("WAYLAND_DISPLAY").empty();
}

[[noreturn]] void Fail(int report) {
  [[maybe_unused]] const ssize_t told = write(report, "!", 1);
  _exit(127);
}

// Becomes the program; on the way there only what is safe between fork and exec. Reports a failed
// start through `report`, which a successful one closes.
[[noreturn]] void BecomeProgram(const char* program, char* const* arguments, int report) {
  setsid();
  // It may be one of those below, in a process that was started without them.
  report = fcntl(report, F_DUPFD_CLOEXEC, 3);
  const int nothing = open("/dev/null", O_RDWR);
  for (int standard = 0; standard <= 2; ++standard) dup2(nothing, standard);
  close_range(3, ~0U, CLOSE_RANGE_CLOEXEC);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  signal(SIGPIPE, SIG_DFL);
  execv(program, arguments);
  Fail(report);
}

// All that is written to the pipe until its last writer is gone; at most `size` bytes.
size_t ReadToEnd(int pipe, char* buffer, size_t size) {
  size_t length = 0;
  while (length < size) {
    const ssize_t got = read(pipe, buffer + length, size - length);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) break;
    length += static_cast<size_t>(got);
  }
  return length;
}

// Starts the program, with the words after its own, as a grandchild, so that it never becomes a
// zombie of this process. Its process id; 0 when it cannot be started.
pid_t StartDetached(std::vector<std::string> words) {
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  int report[2];
  if (pipe2(report, O_CLOEXEC) != 0) return 0;
  const pid_t child = fork();
  if (child == 0) {
    const pid_t grandchild = fork();
    if (grandchild == 0) BecomeProgram(arguments[0], arguments.data(), report[1]);
    if (grandchild < 0) Fail(report[1]);
    [[maybe_unused]] const ssize_t told = write(report[1], &grandchild, sizeof grandchild);
    _exit(0);
  }
  close(report[1]);
  while (child > 0 && waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
  }
  // The process id alone, or that and the mark of a failed start.
  char told[sizeof(pid_t) + 1];
  const size_t length = ReadToEnd(report[0], told, sizeof told);
  close(report[0]);
  pid_t program = 0;
  if (child > 0 && length == sizeof program) std::memcpy(&program, told, sizeof program);
  return program;
}

// Waits until a process that is no child of this one has ended, at most so many milliseconds.
void WaitForEnd(pid_t process, int milliseconds) {
  const int handle = static_cast<int>(syscall(SYS_pidfd_open, process, 0));
  if (handle < 0) return;  // it has ended
  pollfd waiting{handle, POLLIN, 0};
  poll(&waiting, 1, milliseconds);
  close(handle);
}

}  // namespace

bool HasOpener() {
  if (!Environment("KESTRELON_OPENER").empty()) return true;
  return HasDisplay() && !FindProgram("xdg-open").empty();
}

bool HasProgramForFile(const std::string& path) {
  if (!HasOpener()) return false;
  return !Environment("KESTRELON_OPENER").empty() || IsTypeAssociated(TypeOfFile(path));
}

bool HasProgramForLinks(const std::string& scheme) {
  if (!HasOpener()) return false;
  return !Environment("KESTRELON_OPENER").empty() || IsTypeAssociated("x-scheme-handler/" + scheme);
}

OpenOutcome OpenForUser(const std::string& target) {
  if (!HasOpener()) return OpenOutcome::kNoOpener;
  const std::string chosen = Environment("KESTRELON_OPENER");
  const std::string program = FindProgram(chosen.empty() ? "xdg-open" : chosen);
  if (program.empty() || StartDetached({program, target}) == 0) return OpenOutcome::kCannotStart;
  return OpenOutcome::kStarted;
}

bool RunForUser(const std::string& name, const std::vector<std::string>& arguments,
                int milliseconds) {
  const std::string program = FindProgram(name);
  std::vector<std::string> words = {program};
  words.insert(words.end(), arguments.begin(), arguments.end());
  const pid_t process = program.empty() ? 0 : StartDetached(std::move(words));
  if (process == 0) return false;
  WaitForEnd(process, milliseconds);
  return true;
}

}  // namespace kestrelon::desktop
