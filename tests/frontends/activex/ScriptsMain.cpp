// The tests with scripts, on a machine where the control is registered.

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/frontends/activex/StandIns.h"

namespace {

using kestrelon::testing::RunProgram;

// The control's module, registered by the system's own tool for as long as the tests run.
class RegisteredModule final : public testing::Environment {
 public:
  void SetUp() override { ASSERT_EQ(RunProgram(u"regsvr32 /s \"" + path_ + u"\""), 0u); }
  void TearDown() override { EXPECT_EQ(RunProgram(u"regsvr32 /u /s \"" + path_ + u"\""), 0u); }

 private:
  const std::u16string path_ = std::filesystem::absolute(KESTRELON_MODULE).u16string();
};

}  // namespace

int main(int argc, char** argv) {
  if (FAILED(OleInitialize(nullptr))) return 2;
  testing::InitGoogleTest(&argc, argv);
  testing::AddGlobalTestEnvironment(new RegisteredModule);
  const int result = RUN_ALL_TESTS();
  OleUninitialize();
  if (kestrelon::live_objects == 0) return result;
  std::printf("%d COM objects were never released\n", kestrelon::live_objects.load());
  return 1;
}
