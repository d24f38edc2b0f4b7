// Runs tests in a single-threaded apartment, and fails when COM objects of ours outlive them.

#include <gtest/gtest.h>

#include "platform/windows/ComClass.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (FAILED(OleInitialize(nullptr))) return 2;
  const int result = RUN_ALL_TESTS();
  OleUninitialize();
  if (kestrelon::live_objects == 0) return result;
  std::printf("%d COM objects were never released\n", kestrelon::live_objects.load());
  return 1;
}
