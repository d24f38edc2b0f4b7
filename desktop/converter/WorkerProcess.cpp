#include "desktop/converter/WorkerProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>

#include "automation/Text.h"
#include "desktop/converter/Profile.h"
#include "desktop/converter/WorkerProtocol.h"

namespace kestrelon::desktop {
namespace fs = std::filesystem;
using std::chrono::milliseconds;
using std::chrono::steady_clock;
namespace {

// How long the worker's supervisor may take to kill and reap its group before it is killed itself.
constexpr milliseconds kGrace{2'000};

[[noreturn]] void FailToStart(const fs::path& program, int error_code) {
  throw AutomationError(kConversionFailed,
                        FromUtf8("the converter's worker " + program.string() +
                                 " cannot be started: " + std::strerror(error_code)));
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

// Nothing of the caller's environment but the time zone, which fields in a document show.
std::vector<std::string> WorkerEnvironment(const fs::path& folder) {
  std::vector<std::string> environment = {
      "PATH=/usr/bin:/bin", "LC_ALL=C.UTF-8", "SAL_USE_VCLPLUGIN=svp",
      "HOME=" + (folder / kHomeFolder).string(), "TMPDIR=" + (folder / kScratchFolder).string()};
  if (const char* zone = std::getenv("TZ"); zone != nullptr) {
    environment.push_back(std::string("TZ=") + zone);
  }
  return environment;
}

// A process of its own group with default signals, silent standard streams and one descriptor.
int Spawn(const fs::path& program, std::vector<std::string> arguments,
          std::vector<std::string> environment, int worker_socket, pid_t& pid) {
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_adddup2(&files, worker_socket, kWorkerSocket);
  posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addclosefrom_np(&files, kWorkerSocket + 1);

  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t all, none;
  sigfillset(&all);
  sigemptyset(&none);
  posix_spawnattr_setpgroup(&attributes, 0);
  posix_spawnattr_setsigdefault(&attributes, &all);
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setflags(&attributes,
                           POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);

  const int error = posix_spawn(&pid, program.c_str(), &files, &attributes,
                                Pointers(arguments).data(), Pointers(environment).data());
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&files);
  return error;
}

}  // namespace

WorkerProcess::WorkerProcess(const Installation& installation) : folder_(kPrivateFolderPrefix) {
  CreateProfile(folder_.path());
  Start(installation);
}

void WorkerProcess::Start(const Installation& installation) {
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0) {
    FailToStart(installation.worker, errno);
  }
  const fs::path folder = fs::absolute(folder_.path());
  const int error =
      Spawn(installation.worker,
            {installation.worker.string(), installation.program_folder.string(), folder.string()},
            WorkerEnvironment(folder), ends[1], pid_);
  close(ends[1]);
  if (error != 0) {
    close(ends[0]);
    FailToStart(installation.worker, error);
  }
  socket_ = ends[0];
}

WorkerProcess::~WorkerProcess() {
  close(socket_);  // on which the worker's supervisor kills and reaps the rest of the group
  if (WaitForEnd(kGrace)) return;
  kill(-pid_, SIGKILL);
  while (waitpid(pid_, nullptr, 0) < 0 && errno == EINTR) {
  }
}

bool WorkerProcess::WaitForEnd(milliseconds limit) {
  const auto start = steady_clock::now();
  milliseconds pause{1};
  while (true) {
    const pid_t ended = waitpid(pid_, nullptr, WNOHANG);
    if (ended == pid_ || (ended < 0 && errno != EINTR)) return true;
    if (steady_clock::now() - start > limit) return false;
    std::this_thread::sleep_for(pause);
    pause = std::min(pause * 2, milliseconds{20});
  }
}

Reply WorkerProcess::WaitForReply(milliseconds limit) {
  const auto deadline = steady_clock::now() + limit;
  while (true) {
    const auto left = std::chrono::ceil<milliseconds>(deadline - steady_clock::now()).count();
    pollfd waiting{socket_, POLLIN, 0};
    const int ready = left > 0 ? poll(&waiting, 1, static_cast<int>(left)) : 0;
    if (ready == 0) return {ReplyKind::kTimedOut, {}};
    if (ready > 0) break;
    if (errno != EINTR) return {ReplyKind::kCrashed, {}};
  }
  std::string message(kMaximumMessage, '\0');
  const ssize_t size = recv(socket_, message.data(), message.size(), 0);
  if (size <= 0) return {ReplyKind::kCrashed, {}};
  message.resize(static_cast<size_t>(size));
  if (message[0] == kReplyDone) return {ReplyKind::kDone, {}};
  return {ReplyKind::kFailed, message.substr(1)};
}

Reply WorkerProcess::Ask(std::string_view request, milliseconds limit) {
  if (send(socket_, request.data(), request.size(), MSG_NOSIGNAL) < 0) {
    return {ReplyKind::kCrashed, {}};
  }
  return WaitForReply(limit);
}

bool WorkerProcess::IsAlive() const {
  pollfd state{socket_, 0, 0};
  return poll(&state, 1, 0) == 0;
}

fs::path WorkerProcess::job_folder() const { return fs::absolute(folder_.path()) / kJobFolder; }

}  // namespace kestrelon::desktop
