// Runs tests in a single-threaded apartment, and fails when COM objects of ours outlive them. With
// --through-com scripted objects are led through COM.

#include <gtest/gtest.h>

#include <cstdio>
#include <string_view>

#include "platform/windows/ComClass.h"
#include "tests/support/windows/ThroughCom.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (argc == 2 && argv[1] == std::string_view("--through-com")) {
    kestrelon::testing::LeadScriptedObjectsThroughCom();
  }
  if (FAILED(OleInitialize(nullptr))) return 2;
  const int result = RUN_ALL_TESTS();
  OleUninitialize();
  if (kestrelon::live_objects == 0) return result;
  std::printf("%d COM objects were never released\n", kestrelon::live_objects.load());
  return 1;
}
