#include "desktop/opener/Opener.h"

#include <fcntl.h>
#include <linux/close_range.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <string_view>

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

// Starts the program as a grandchild, so that it never becomes a zombie of this process.
bool StartDetached(std::string program, std::string target) {
  int report[2];
  if (pipe2(report, O_CLOEXEC) != 0) return false;
  char* const arguments[] = {program.data(), target.data(), nullptr};
  const pid_t child = fork();
  if (child == 0) {
    const pid_t grandchild = fork();
    if (grandchild == 0) BecomeProgram(program.c_str(), arguments, report[1]);
    if (grandchild < 0) Fail(report[1]);
    _exit(0);
  }
  close(report[1]);
  while (child > 0 && waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
  }
  char failure = 0;
  ssize_t got = -1;
  while ((got = read(report[0], &failure, 1)) < 0 && errno == EINTR) {
  }
  close(report[0]);
  return child > 0 && got == 0;
}

}  // namespace

bool HasOpener() {
  if (!Environment("KESTRELON_OPENER").empty()) return true;
  return HasDisplay() && !FindProgram("xdg-open").empty();
}

OpenOutcome OpenForUser(const std::string& target) {
  if (!HasOpener()) return OpenOutcome::kNoOpener;
  const std::string chosen = Environment("KESTRELON_OPENER");
  const std::string program = FindProgram(chosen.empty() ? "xdg-open" : chosen);
  if (program.empty() || !StartDetached(program, target)) return OpenOutcome::kCannotStart;
  return OpenOutcome::kStarted;
}

}  // namespace kestrelon::desktop
