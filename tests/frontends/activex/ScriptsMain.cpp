// The tests with scripts; and, where COM starts this program for one of its classes, the desktop
// that they meet.

#include <gtest/gtest.h>

#include <string_view>

#include "platform/windows/ComClass.h"
#include "tests/frontends/activex/Programs.h"
#include "tests/frontends/activex/StandIns.h"

int main(int argc, char** argv) {
  if (FAILED(OleInitialize(nullptr))) return 2;
  int result = 0;
  if (argc == 2 && argv[1] == std::string_view("-Embedding")) {
    kestrelon::testing::ServeDesktop();
  } else {
    testing::InitGoogleTest(&argc, argv);
    testing::AddGlobalTestEnvironment(new kestrelon::testing::RegisteredModule);
    result = RUN_ALL_TESTS();
  }
  OleUninitialize();
  if (kestrelon::live_objects == 0) return result;
  std::printf("%d COM objects were never released\n", kestrelon::live_objects.load());
  return 1;
}
