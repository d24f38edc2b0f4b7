// The world of the converter's tests: a temporary folder of its own, changed environment variables,
// and the processes below this one.
#pragma once

#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "desktop/storage/AtomicFile.h"

namespace kestrelon::desktop {

class ChangedEnvironment {
 public:
  ChangedEnvironment(const char* name, const std::string& value) : name_(name) {
    if (const char* before = getenv(name)) before_ = before;
    setenv(name, value.c_str(), 1);
  }
  ~ChangedEnvironment() {
    if (before_) {
      setenv(name_, before_->c_str(), 1);
    } else {
      unsetenv(name_);
    }
  }

 private:
  const char* name_;
  std::optional<std::string> before_;
};

// The processes that descend from `parent`.
inline std::vector<pid_t> Descendants(pid_t parent) {
  std::vector<pid_t> found;
  for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
    const std::string name = entry.path().filename();
    if (name.find_first_not_of("0123456789") != std::string::npos) continue;
    std::ifstream file(entry.path() / "stat");
    const std::string stat{std::istreambuf_iterator<char>(file), {}};
    const size_t name_end = stat.rfind(')');
    if (name_end == std::string::npos) continue;
    if (std::stoi(stat.substr(name_end + 4)) != parent) continue;
    const pid_t child = std::stoi(name);
    found.push_back(child);
    for (const pid_t grandchild : Descendants(child)) found.push_back(grandchild);
  }
  return found;
}

class ConverterWorld {
 public:
  std::filesystem::path operator/(const std::string& name) const { return files_.path() / name; }
  std::filesystem::path Write(const std::string& name, const std::string& content) const {
    WriteFileAtomically(files_.path() / name, content);
    return files_.path() / name;
  }
  // A worker program of the test's own; its requests and replies go through descriptor 3.
  std::filesystem::path WriteProgram(const std::string& name, const std::string& script) const {
    const auto path = Write(name, "#!/bin/sh\n" + script);
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    return path;
  }
  // Private folders of the converter that are still there.
  size_t PrivateFolders() const {
    using Walk = std::filesystem::directory_iterator;
    return static_cast<size_t>(std::distance(Walk(temporary_.path()), Walk()));
  }

 private:
  PrivateFolder files_{"kestrelon-converter-test-"};
  PrivateFolder temporary_{"kestrelon-converter-temp-"};
  ChangedEnvironment temporary_variable_{"TMPDIR", temporary_.path().string()};
};

}  // namespace kestrelon::desktop
