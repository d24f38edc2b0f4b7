// An open file or folder, closed at the end of its scope.
#pragma once

#include <unistd.h>

namespace kestrelon::desktop {

class FileDescriptor {
 public:
  explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
  ~FileDescriptor() {
    if (descriptor_ >= 0) close(descriptor_);
  }
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  // Negative when opening failed.
  int get() const { return descriptor_; }

 private:
  int descriptor_;
};

}  // namespace kestrelon::desktop
