#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <thread>

#include "platform/windows/SystemTexts.h"
#include "platform/windows/WindowsPlatform.h"

namespace kestrelon {
namespace {

// Of the last message box that was about to be made.
HWND seen_owner = nullptr;

// Boxes are looked at before they are refused, as they are without a display.
LRESULT CALLBACK RefuseBox(int code, WPARAM first, LPARAM second) {
  if (code != HCBT_CREATEWND) return CallNextHookEx(nullptr, code, first, second);
  const CREATESTRUCTW& made = *reinterpret_cast<CBT_CREATEWNDW*>(second)->lpcs;
  if (made.lpszClass != reinterpret_cast<LPCWSTR>(WC_DIALOG)) return 0;
  seen_owner = made.hwndParent;
  return 1;
}

HWND NewWindow() {  // that is never shown, and needs no display
  return CreateWindowW(L"STATIC", L"", 0, 0, 0, 1, 1, HWND_MESSAGE, nullptr, nullptr, nullptr);
}

class PlatformTest : public ::testing::Test {
 protected:
  HWND owner_ = nullptr;
  WindowsPlatform platform_{[this] { return owner_; }};
};

// A folder in the user's temporary one, where temporary files go as long as it is there.
class TempFolderTest : public PlatformTest {
 protected:
  ~TempFolderTest() override {
    SetEnvironmentVariableW(L"TMP", AsWide(temp_));
    std::filesystem::remove_all(AsWide(folder_));
  }
  void UseFolder(StringView name) {
    folder_ = temp_ + String(name);
    std::filesystem::remove_all(AsWide(folder_));  // of a run that was ended
    ASSERT_TRUE(CreateDirectoryW(AsWide(folder_), nullptr));
    SetEnvironmentVariableW(L"TMP", AsWide(folder_));
  }
  std::string TempPath() {
    char buffer[255];
    return std::string(buffer, platform_.GetTempPathAnsi(sizeof buffer, buffer));
  }

  const String temp_ = FromAnsi(TempPath());
  String folder_ = temp_ + u"unused";
};

TEST_F(TempFolderTest, CanBeNamedWhateverItsCharacters) {
  UseFolder(u"\u0141ukasz \u5C71");
  const std::string path = TempPath();
  const auto size = static_cast<uint32_t>(path.size());
  std::string buffer(size + 1, '~');
  EXPECT_EQ(platform_.GetTempPathAnsi(size, buffer.data()), size + 1);
  EXPECT_EQ(buffer, std::string(size + 1, '~')) << "it was too short";
  EXPECT_EQ(platform_.GetTempPathAnsi(size + 1, buffer.data()), size);
  EXPECT_EQ(buffer, path + '\0');

  char name[kAnsiPathSize] = "";
  const uint32_t number = platform_.GetTempFileNameAnsi(path.c_str(), "Quote 12", 0, name);
  const std::string file = std::string(name).substr(path.size());
  EXPECT_TRUE(file.starts_with("Quo")) << name;
  EXPECT_EQ(std::stoul(file.substr(3), nullptr, 16), number);
  EXPECT_TRUE(std::filesystem::exists(AsWide(folder_ + u'\\' + FromAnsi(file))));
}

TEST_F(TempFolderTest, NamesFilesByANumber) {
  char name[kAnsiPathSize];
  EXPECT_EQ(platform_.GetTempFileNameAnsi("C:\\", "\xE9", 0xAB, name), 0xABu);
  EXPECT_EQ(LowerCase(FromAnsi(name)), u"c:\\\u00E9ab.tmp");
  for (const char* prefix : {"a:b", "a\\b", "a\"", "\x01"}) {
    EXPECT_EQ(platform_.GetTempFileNameAnsi("C:\\", prefix, 0, name), 0u) << prefix;
  }
}

TEST_F(PlatformTest, TellsTheLocaleInAnsi) {
  constexpr uint32_t kPolish = 0x0415;
  char text[4] = "~~~";
  EXPECT_EQ(platform_.GetLocaleInfoAnsi(kPolish, kLocaleScurrency, nullptr, 0), 3);
  EXPECT_EQ(platform_.GetLocaleInfoAnsi(kPolish, kLocaleScurrency, text, 2), 0);
  EXPECT_STREQ(text, "~~~");
  EXPECT_EQ(platform_.GetLocaleInfoAnsi(kPolish, kLocaleScurrency, text, 3), 3);
  EXPECT_STREQ(text, "zl");
  EXPECT_EQ(platform_.GetLocaleInfoAnsi(0xFFFFF, kLocaleIdate, text, 4), 0);
}

TEST_F(PlatformTest, FillsVersionRecordsOfOneSizeOnly) {
  OsVersionRecord record{.size = 156};
  EXPECT_EQ(platform_.GetOsVersion(record), 0);
  record.size = 148;
  EXPECT_NE(platform_.GetOsVersion(record), 0);
  EXPECT_GT(record.major_version, 4u);
}

TEST_F(TempFolderTest, TellsWhyTheShellOpensNothing) {
  const auto open = [&](const String& file) {
    return platform_.ShellExecute(platform_.GetDesktopWindow(), u"Open", file, u"", u"C:\\", 1);
  };
  UseFolder(u"shell");
  for (const StringView name : {u"\\plain.kestrelon-none", u"\\\u0141\u5C71.kestrelon-none"}) {
    const String file = folder_ + String(name);
    EXPECT_EQ(open(file), SE_ERR_FNF);
    CloseHandle(CreateFileW(AsWide(file), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
    EXPECT_EQ(open(file), SE_ERR_NOASSOC) << ToUtf8(file);
    EXPECT_EQ(open(file + u'\0'), SE_ERR_FNF);
    EXPECT_EQ(open(file + String(1000, u'x')), SE_ERR_FNF);
  }
}

TEST_F(PlatformTest, GivesMessageBoxesToThePagesWindow) {
  const HWND nobody = GetDesktopWindow();
  const HHOOK hook = SetWindowsHookExW(WH_CBT, RefuseBox, nullptr, GetCurrentThreadId());
  const auto owner_of_box = [&] {
    seen_owner = nobody;
    // Nothing is shown, which the system tells by -1 or 0.
    EXPECT_LE(platform_.ShowMessageBox(u"text", MB_ICONINFORMATION, std::nullopt), 0);
    return seen_owner;
  };
  EXPECT_EQ(owner_of_box(), nullptr);
  owner_ = NewWindow();
  EXPECT_EQ(owner_of_box(), owner_);
  DestroyWindow(owner_);
  EXPECT_EQ(owner_of_box(), nullptr);
  UnhookWindowsHookEx(hook);
}

TEST_F(PlatformTest, AnswersOtherProgramsWhileItPauses) {
  const HWND window = NewWindow();
  PostMessageW(window, WM_APP, 0, 0);
  std::atomic<bool> is_answered = false;
  std::thread other([&] {
    SendMessageW(window, WM_NULL, 0, 0);
    is_answered = true;
  });
  while (!is_answered) platform_.Pause(10);
  other.join();
  // What was posted waits until the page's call is over.
  MSG message;
  EXPECT_TRUE(PeekMessageW(&message, window, WM_APP, WM_APP, PM_REMOVE));
  DestroyWindow(window);
}

TEST(SystemTexts, AreExactOrNothing) {
  EXPECT_EQ(NearestAnsi(u"\u20AC\u0141\u5C71\u0081"), "\x80L?\x81");
  EXPECT_EQ(InSystemCodePage({u"plain", u""}), (std::vector<std::string>{"plain", ""}));
  EXPECT_EQ(AnsiPath(u"C:\\none \u5C71"), "C:\\none ?") << "what is not there has no short name";
  EXPECT_EQ(AnsiPath(u"C:\\Program Files"), "C:\\Program Files") << "needs no short name";
  // No code page but UTF-8 has both.
  EXPECT_EQ(InSystemCodePage({u"plain", u"\u0141\u5C71"}).has_value(), GetACP() == CP_UTF8);
}

}  // namespace
}  // namespace kestrelon
