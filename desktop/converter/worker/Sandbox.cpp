#include "desktop/converter/worker/Sandbox.h"

#include <fcntl.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/landlock.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace kestrelon::desktop {
namespace fs = std::filesystem;
namespace {

#if defined(__x86_64__)
constexpr uint32_t kArchitecture = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__)
constexpr uint32_t kArchitecture = AUDIT_ARCH_AARCH64;
#else
#error "Name the audit architecture of this processor for the system call filter."
#endif

// No sockets at all, and no io_uring, which could make them behind the filter's back. Calls of
// another instruction set end the process, because their numbers mean other things.
bool ForbidSockets() {
  constexpr uint32_t kDenied = SECCOMP_RET_ERRNO | EACCES;
  constexpr uint32_t kOtherAbi = 0x40000000;  // x32 on x86-64; no call on other processors
  sock_filter filter[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, arch)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, kArchitecture, 1, 0),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_KILL_PROCESS),
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JGE | BPF_K, kOtherAbi, 2, 0),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_socket, 1, 0),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_io_uring_setup, 0, 1),
      BPF_STMT(BPF_RET | BPF_K, kDenied),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  };
  sock_fprog program = {std::size(filter), filter};
  return prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

// Rights of Landlock's first version, and those that came with the second (moving between folders)
// and the third (truncating), which the headers may not know.
constexpr uint64_t kReadRights =
    LANDLOCK_ACCESS_FS_EXECUTE | LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR;
constexpr uint64_t kDeviceRights = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_WRITE_FILE;
constexpr uint64_t kFirstRights = (LANDLOCK_ACCESS_FS_MAKE_SYM << 1) - 1;
constexpr uint64_t kMoveRight = uint64_t{1} << 13;
constexpr uint64_t kTruncateRight = uint64_t{1} << 14;

void Allow(int ruleset, const fs::path& path, uint64_t rights) {
  const int folder = open(path.c_str(), O_PATH | O_CLOEXEC);
  if (folder < 0) return;
  landlock_path_beneath_attr rule{};
  rule.allowed_access = rights;
  rule.parent_fd = folder;
  syscall(SYS_landlock_add_rule, ruleset, LANDLOCK_RULE_PATH_BENEATH, &rule, 0);
  close(folder);
}

// /proc only as far as it shows this process: others there may hold secrets in their environment.
constexpr const char* kSystemFolders[] = {"/usr",
                                          "/bin",
                                          "/lib",
                                          "/lib32",
                                          "/lib64",
                                          "/etc/alternatives",
                                          "/etc/fonts",
                                          "/etc/libreoffice",
                                          "/proc/self",
                                          "/var/cache/fontconfig",
                                          "/var/lib/libreoffice",
                                          "/var/spool/libreoffice"};
constexpr const char* kSystemFiles[] = {"/etc/ld.so.cache", "/etc/localtime"};
constexpr const char* kDevices[] = {"/dev/null", "/dev/zero", "/dev/random", "/dev/urandom"};

bool RestrictFiles(const fs::path& writable, const std::vector<fs::path>& readable) {
  const long version =
      syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
  if (version < 1) return true;
  uint64_t all = kFirstRights;
  if (version >= 2) all |= kMoveRight;
  if (version >= 3) all |= kTruncateRight;
  landlock_ruleset_attr attributes{};
  attributes.handled_access_fs = all;
  const int ruleset =
      static_cast<int>(syscall(SYS_landlock_create_ruleset, &attributes, sizeof attributes, 0));
  if (ruleset < 0) return false;
  Allow(ruleset, writable, all);
  for (const fs::path& folder : readable) Allow(ruleset, folder, kReadRights);
  for (const char* folder : kSystemFolders) Allow(ruleset, folder, kReadRights);
  for (const char* file : kSystemFiles) Allow(ruleset, file, LANDLOCK_ACCESS_FS_READ_FILE);
  for (const char* device : kDevices) Allow(ruleset, device, kDeviceRights);
  const bool restricted = syscall(SYS_landlock_restrict_self, ruleset, 0) == 0;
  close(ruleset);
  return restricted;
}

}  // namespace

std::string EnterSandbox(const fs::path& writable, const std::vector<fs::path>& readable) {
  if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) {
    return std::string("new privileges cannot be forbidden: ") + std::strerror(errno);
  }
  if (!RestrictFiles(writable, readable)) {
    return std::string("access to files cannot be restricted: ") + std::strerror(errno);
  }
  if (!ForbidSockets()) {
    return std::string("access to the network cannot be forbidden: ") + std::strerror(errno);
  }
  return {};
}

}  // namespace kestrelon::desktop
