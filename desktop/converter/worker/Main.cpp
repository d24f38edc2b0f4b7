// kestrelon-converter: the worker program of the converter.
//
// Two processes: the one that loads the office suite and answers, and its supervisor, which does
// nothing but wait for the end of either side. Whatever happens to the converter or to the office
// suite, the supervisor then kills the whole process group of the latter and removes the profile.

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>

#include "desktop/converter/WorkerProtocol.h"
#include "desktop/converter/worker/Office.h"

namespace kestrelon::desktop {
namespace fs = std::filesystem;
namespace {

bool IsCallSound(int count, char** arguments) {
  struct stat status {};
  return count == 3 && fstat(kWorkerSocket, &status) == 0 && S_ISSOCK(status.st_mode) &&
         fs::path(arguments[2]).is_absolute() &&
         fs::path(arguments[2]).filename().string().starts_with(kPrivateFolderPrefix);
}

[[noreturn]] void RunOffice(char** arguments, pid_t supervisor) {
  setpgid(0, 0);
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != supervisor) _exit(1);
  fcntl(kWorkerSocket, F_SETFD, FD_CLOEXEC);
  // Not exit(): the office suite's static destructors are slow and sometimes crash.
  _exit(ServeConversions(arguments[1], arguments[2]));
}

// Returns when the converter has closed its end, the office process has ended, or somebody asks
// this process to end.
void WaitForTheEnd(pid_t office, const sigset_t& signals) {
  const int signal_source = signalfd(-1, &signals, SFD_CLOEXEC);
  pollfd sources[] = {{kWorkerSocket, POLLRDHUP, 0}, {signal_source, POLLIN, 0}};
  while (true) {
    if (poll(sources, 2, -1) < 0) {
      if (errno == EINTR) continue;
      return;
    }
    if (sources[0].revents != 0) return;
    signalfd_siginfo received{};
    if (read(signal_source, &received, sizeof received) != sizeof received) return;
    if (received.ssi_signo != SIGCHLD) return;
    // Orphans of the office process also end up here; only its own end counts.
    siginfo_t ended{};
    while (waitid(P_ALL, 0, &ended, WEXITED | WNOHANG | WNOWAIT) == 0 && ended.si_pid != 0) {
      if (ended.si_pid == office) return;
      waitpid(ended.si_pid, nullptr, 0);
      ended = {};
    }
  }
}

int Supervise(int count, char** arguments) {
  if (!IsCallSound(count, arguments)) {
    std::fprintf(stderr, "kestrelon-converter is started by Kestrelon, not by hand\n");
    return 2;
  }
  if (chdir("/") != 0) return 2;  // a relative link must not lead to where the caller works
  sigset_t signals, before;
  sigemptyset(&signals);
  for (const int number : {SIGCHLD, SIGTERM, SIGINT, SIGHUP}) sigaddset(&signals, number);
  sigprocmask(SIG_BLOCK, &signals, &before);
  prctl(PR_SET_CHILD_SUBREAPER, 1);
  const pid_t supervisor = getpid();
  const pid_t office = fork();
  if (office == 0) {
    sigprocmask(SIG_SETMASK, &before, nullptr);
    RunOffice(arguments, supervisor);
  }
  if (office > 0) {
    setpgid(office, office);
    WaitForTheEnd(office, signals);
    kill(-office, SIGKILL);
    while (waitpid(-office, nullptr, 0) > 0 || errno == EINTR) {
    }
  }
  std::error_code ignored;
  fs::remove_all(arguments[2], ignored);
  return 0;
}

}  // namespace
}  // namespace kestrelon::desktop

int main(int count, char** arguments) { return kestrelon::desktop::Supervise(count, arguments); }
