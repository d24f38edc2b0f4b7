// One running worker program: started, asked, ended.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>

#include "desktop/converter/Installation.h"
#include "desktop/storage/AtomicFile.h"

namespace kestrelon::desktop {

enum class ReplyKind {
  kDone,
  kFailed,    // the worker says why
  kCrashed,   // the worker is gone
  kTimedOut,  // no reply in time; the worker must be ended
};

struct Reply {
  ReplyKind kind;
  std::string reason;  // of kFailed, UTF-8
};

class WorkerProcess {
 public:
  // Starts the program with a new profile, in a process group of its own and an environment of its
  // own. It is ready after its first reply. Throws kConversionFailed when it cannot be started.
  explicit WorkerProcess(const Installation& installation);
  // Ends the program and everything it started, and removes its profile.
  ~WorkerProcess();
  WorkerProcess(const WorkerProcess&) = delete;
  WorkerProcess& operator=(const WorkerProcess&) = delete;

  Reply WaitForReply(std::chrono::milliseconds limit);
  // One request and its reply.
  Reply Ask(std::string_view request, std::chrono::milliseconds limit);
  // False once the program has closed its end: it was killed, or it crashed.
  bool IsAlive() const;
  // Files of a conversion go here: the only folder in which the worker reads documents.
  std::filesystem::path job_folder() const;

 private:
  void Start(const Installation& installation);
  bool WaitForEnd(std::chrono::milliseconds limit);

  PrivateFolder folder_;
  int socket_ = -1;
  pid_t pid_ = -1;
};

}  // namespace kestrelon::desktop
