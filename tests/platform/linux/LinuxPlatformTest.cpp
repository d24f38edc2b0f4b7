#include <gtest/gtest.h>
#include <sys/utsname.h>

#include <cstdio>
#include <filesystem>
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
  const desktop::ConverterWorld files;
  int32_t Open(const std::string& file) {
    return platform.ShellExecute(1, u"Open", FromUtf8(file), u"", u"C:\\", 1);
  }
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

TEST_F(SystemServices, TemporaryFilesAreNewPrivateAndNamedAsTheSystemNamesThem) {
  const desktop::PrivateFolder folder("kestrelon-test-");
  const std::string path = folder.path().string();
  char buffer[260] = "";
  char name[32];
  const uint32_t number = platform.GetTempFileNameAnsi((path + "/").c_str(), "#\x80x/", 0, buffer);
  std::snprintf(name, sizeof name, "/#\x80x%X.tmp", number);
  EXPECT_EQ(buffer, path + name);
  const std::filesystem::path file = ToUtf8(FromAnsi(buffer));
  EXPECT_EQ(std::filesystem::file_size(file), 0U);
  EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms{0600});
  const std::string long_path = path + "/" + std::string(247 - path.size(), 'x');
  std::filesystem::create_directory(long_path);
  for (const auto& [where, prefix] :
       {std::pair(long_path, "Quo"), {path, "Q/1"}, {path, "\t"}, {"", "Q"}, {"/none", "Q"}}) {
    EXPECT_EQ(platform.GetTempFileNameAnsi(where.c_str(), prefix, 0, buffer), 0U) << prefix;
  }
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

TEST_F(SystemServices, ShellOpensOrSaysWhyNot) {
  const std::string file = files.Write("a letter.doc", "x");
  const std::string link = "https://a/b?c=d\\e#f g";
  const desktop::RecordingOpener opener;
  for (const auto& [name, opened] : {std::pair{file, file},
                                     {std::regex_replace(file, std::regex("/"), "\\"), file},
                                     {std::filesystem::relative(file), file},
                                     {link, link}}) {
    EXPECT_GT(Open(name), 32) << name;
    EXPECT_EQ(std::filesystem::path(opener.Next()).lexically_normal(), opened);
  }
  EXPECT_EQ(Open(file + "x"), 2);
  EXPECT_EQ(Open(std::string("tel:1\0002", 7)), 2);
  EXPECT_EQ(Open(""), 2);
  EXPECT_EQ(Open(file + "/x"), 3);
  EXPECT_EQ(Open("C:\\none\\a.doc"), 3) << "no link of a kind named by one letter";
  for (const auto& [program, code] : {std::pair{"/nonexistent/viewer", 27}, {"", 31}}) {
    const ChangedEnvironment other("KESTRELON_OPENER", program);
    const ChangedEnvironment path("PATH", "/nonexistent");
    EXPECT_EQ(Open(file), code);
  }
  std::filesystem::permissions(file, std::filesystem::perms::none);
  // Who may read everything tries as somebody else.
  const bool is_root = geteuid() == 0;
  if (is_root && setresuid(65534, 65534, 0) != 0) return;
  EXPECT_EQ(Open(file), 5);
  EXPECT_TRUE(!is_root || setresuid(0, 0, 0) == 0);
}

// The desktop's lists are found once in a process, so all that asks them is here.
TEST_F(SystemServices, ShellAsksTheDesktopsOwnOpenerOnlyForTypesWithAProgram) {
  const desktop::RecordingOpener opener;
  const std::string here = files.Write("a.words", "plain words\n").parent_path();
  std::filesystem::copy(opener.program(), files / "xdg-open");
  std::filesystem::create_directory(files / "applications");
  files.Write("applications/v.desktop",
              "[Desktop Entry]\nType=Application\nName=V\nExec=/bin/sh\n");
  files.Write("applications/mimeapps.list",
              "[Default Applications]\ntext/plain=v.desktop\nx-scheme-handler/https=v.desktop\n");
  const ChangedEnvironment none("KESTRELON_OPENER", "");
  const ChangedEnvironment display("DISPLAY", ":7");
  const ChangedEnvironment path("PATH", here);
  const ChangedEnvironment config("XDG_CONFIG_HOME", here + "/none");
  const ChangedEnvironment user("XDG_DATA_HOME", here);
  const ChangedEnvironment system("XDG_DATA_DIRS", here + "/none");
  EXPECT_GT(Open(here + "/a.words"), 32);
  EXPECT_EQ(opener.Next(), here + "/a.words");
  for (const std::string link : {"HTTPS://h/", "file:///x"}) {
    EXPECT_GT(Open(link), 32);
    EXPECT_EQ(opener.Next(), link);
  }
  EXPECT_EQ(Open("nobodys:x"), 31);
  EXPECT_EQ(Open(files.Write("a.bits", std::string("\x01\x00\xFE", 3))), 31);
}

}  // namespace
}  // namespace kestrelon
