// Programs that tests start, and the module that they register.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "platform/windows/Win32.h"

namespace kestrelon::testing {

// Waits for a kernel object; calls from other programs to objects of this one are answered
// meanwhile.
void WaitAnsweringCalls(HANDLE object);

// Exit status of a program, when it has ended.
DWORD RunProgram(const String& command);

String FullPath(const std::string& path);

// The control's module, registered by the system's own tool for as long as the tests run.
class RegisteredModule final : public ::testing::Environment {
 public:
  void SetUp() override;
  void TearDown() override;
};

}  // namespace kestrelon::testing
