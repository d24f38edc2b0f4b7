#include <gtest/gtest.h>
#include <sys/utsname.h>

#include <regex>

#include "desktop/opener/Opener.h"
#include "platform/linux/LinuxPlatform.h"
#include "tests/desktop/opener/RecordingOpener.h"

namespace kestrelon {
namespace {

using desktop::ChangedEnvironment;

class SystemServices : public ::testing::Test {
 protected:
  LinuxPlatform platform{
      [](const String&, int32_t, const std::optional<String>&) { return int32_t{1}; }};
};

TEST_F(SystemServices, VersionIsThatOfTheKernel) {
  OsVersionRecord record;
  EXPECT_EQ(platform.GetOsVersion(record), 0) << "the size of the record was not set";
  record.size = 148;
  EXPECT_NE(platform.GetOsVersion(record), 0);
  utsname system;
  ASSERT_EQ(uname(&system), 0);
  const std::string version =
      std::to_string(record.major_version) + "." + std::to_string(record.minor_version);
  EXPECT_EQ(std::string(system.release).substr(0, version.size()), version);
  EXPECT_GT(record.major_version, 0U);
}

TEST_F(SystemServices, GuidsAreRandomAndInRegistryForm) {
  const std::regex form(
      "\\{[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}\\}");
  const std::string first = ToUtf8(platform.CreateGuid().value());
  const std::string second = ToUtf8(platform.CreateGuid().value());
  EXPECT_TRUE(std::regex_match(first, form)) << first;
  EXPECT_TRUE(std::regex_match(second, form)) << second;
  EXPECT_NE(first, second);
}

TEST_F(SystemServices, ThereIsATemporaryFolderWhateverTheEnvironmentSays) {
  const ChangedEnvironment variable("TMPDIR", "/dev/null/missing");
  char buffer[255];
  const uint32_t length = platform.GetTempPathAnsi(sizeof buffer, buffer);
  EXPECT_TRUE(std::string_view(buffer, length).starts_with("/tmp/kestrelon-"));
}

TEST_F(SystemServices, OnlyPrintScreenGoingDownTakesAPicture) {
  const desktop::RecordingOpener program("$#");
  const ChangedEnvironment variable("KESTRELON_SCREENSHOT", program.program());
  platform.SendKeyEvent(18, 0, 0, 0);
  platform.SendKeyEvent(44, 0, 2, 0);
  // The first start is one with an argument, and no picture.
  EXPECT_EQ(desktop::OpenForUser("/tmp/x"), desktop::OpenOutcome::kStarted);
  EXPECT_EQ(program.Next(), "1");
  platform.SendKeyEvent(44, 1, 0, 0);
  EXPECT_EQ(program.Next(), "0");
  for (const char* name : {"", "/nonexistent/program"}) {
    const ChangedEnvironment other("KESTRELON_SCREENSHOT", name);
    EXPECT_NO_THROW(platform.SendKeyEvent(44, 1, 0, 0)) << name;
  }
}

}  // namespace
}  // namespace kestrelon
