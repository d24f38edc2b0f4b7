#include "tests/platform/windows/HttpServer.h"
// Brings in <windows.h>, which the server's header stands before.
#include <gmock/gmock.h>

#include <atomic>
#include <filesystem>

#include "platform/windows/SystemTexts.h"
#include "platform/windows/WindowsPlatform.h"

namespace kestrelon {
namespace {

using ::testing::HasSubstr;

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
  String ReadAll(const String& url) {
    const SystemHandle connection = platform_.OpenInternet(u"VB OpenUrl", 0);
    const SystemHandle page = platform_.OpenInternetUrl(connection, url, kInternetReload);
    std::string text;
    char bytes[2048];
    uint32_t count = 0;
    while (page != 0 && platform_.ReadInternetFile(page, bytes, sizeof bytes, count) && count > 0) {
      text.append(bytes, count);
    }
    if (page != 0) platform_.CloseInternetHandle(page);
    platform_.CloseInternetHandle(connection);
    return page == 0 ? u"refused" : FromAnsi(text);
  }

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
  EXPECT_TRUE(path.ends_with('\\')) << path;
  char name[kAnsiPathSize];
  const uint32_t number = platform_.GetTempFileNameAnsi(path.c_str(), "Quote 12", 0, name);
  ASSERT_NE(number, 0u) << path;
  EXPECT_TRUE(std::string(name).starts_with(path + "Quo")) << name;
  EXPECT_EQ(std::stoul(std::string(name).substr(path.size() + 3), nullptr, 16), number);
  // It lies in the user's folder, under the name that members know.
  const String found = folder_ + FromAnsi(std::string(name).substr(path.size() - 1));
  EXPECT_TRUE(std::filesystem::exists(AsWide(found)));
}

TEST_F(TempFolderTest, StaysWithinBuffers) {
  UseFolder(u"caf\u00E9");
  const std::string path = ToAnsi(folder_ + u"\\");
  std::string buffer(path.size() + 1, '~');
  EXPECT_EQ(platform_.GetTempPathAnsi(static_cast<uint32_t>(path.size()), buffer.data()),
            path.size() + 1);
  EXPECT_EQ(buffer, std::string(path.size() + 1, '~'));
  EXPECT_EQ(platform_.GetTempPathAnsi(static_cast<uint32_t>(path.size() + 1), buffer.data()),
            path.size());
  EXPECT_EQ(buffer, path + '\0');
}

TEST_F(TempFolderTest, NamesFilesByANumber) {
  char name[kAnsiPathSize];
  EXPECT_EQ(platform_.GetTempFileNameAnsi("C:\\", "\xE9", 0xAB, name), 0xABu);
  EXPECT_EQ(LowerCase(FromAnsi(name)), u"c:\\\u00E9ab.tmp");
  for (const char* prefix : {"a:b", "a\\b", "a\"", "\x01"}) {
    EXPECT_EQ(platform_.GetTempFileNameAnsi("C:\\", prefix, 0, name), 0u) << prefix;
  }
  EXPECT_EQ(platform_.GetTempFileNameAnsi("C:\\no such folder", "abc", 0, name), 0u);
}

TEST_F(PlatformTest, TellsTheLocaleInAnsi) {
  for (const uint32_t type : {kLocaleIdate, kLocaleScurrency}) {
    wchar_t expected[16];
    GetLocaleInfoW(kLocaleUserDefault, type, expected, 16);
    char text[16];
    const int32_t size = platform_.GetLocaleInfoAnsi(kLocaleUserDefault, type, nullptr, 0);
    EXPECT_EQ(platform_.GetLocaleInfoAnsi(kLocaleUserDefault, type, text, 16), size);
    EXPECT_EQ(FromAnsi(text), FromWide(expected));
    EXPECT_EQ(platform_.GetLocaleInfoAnsi(kLocaleUserDefault, type, text, size - 1), 0);
  }
  constexpr uint32_t kPolish = 0x0415;
  char text[16];
  EXPECT_EQ(platform_.GetLocaleInfoAnsi(kPolish, kLocaleScurrency, text, 16), 3);
  EXPECT_STREQ(text, "zl");
  EXPECT_EQ(platform_.GetLocaleInfoAnsi(0xFFFFF, kLocaleIdate, text, 16), 0);
}

TEST_F(PlatformTest, TellsVersionsAndIds) {
  const FileVersion version = platform_.ComponentVersion();  // PlatformTest.rc
  EXPECT_EQ(version.major, 5);
  EXPECT_EQ(version.minor, 8);
  EXPECT_EQ(version.build, 3);
  EXPECT_EQ(version.revision, 40000);
  OsVersionRecord record{.size = 148};
  EXPECT_NE(platform_.GetOsVersion(record), 0);
  EXPECT_GT(record.major_version, 4u);
  record.size = 156;
  EXPECT_EQ(platform_.GetOsVersion(record), 0);

  const String id = platform_.CreateGuid().value();
  GUID guid{};
  wchar_t text[39];
  EXPECT_EQ(CLSIDFromString(AsWide(id), &guid), S_OK);
  EXPECT_EQ(StringFromGUID2(guid, text, 39), 39);
  EXPECT_EQ(id, FromWide(text));
  EXPECT_NE(id, platform_.CreateGuid());
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

TEST_F(PlatformTest, ReadsTheInternet) {
  std::string big(300000, '\0');
  for (size_t i = 0; i < big.size(); ++i) big[i] = static_cast<char>(i % 251);
  HttpServer server([&](const std::string& request) {
    const std::string answer = " OK\r\nConnection: close\r\n\r\n";
    if (request.starts_with("GET /echo")) return "HTTP/1.0 200" + answer + request;
    if (request.starts_with("GET /big")) return "HTTP/1.0 200" + answer + big;
    return "HTTP/1.0 404" + answer + "not here";
  });
  for (const StringView name : {u"/echo", u"/echo\u00E9", u"/echo\u5C71"}) {
    EXPECT_THAT(ToAnsi(ReadAll(server.url() + String(name))),
                HasSubstr("User-Agent: VB OpenUrl\r\n"));
  }
  EXPECT_EQ(ToAnsi(ReadAll(server.url() + u"/big")), big);
  EXPECT_EQ(ReadAll(server.url() + u"/missing"), u"not here");
  EXPECT_EQ(ReadAll(server.url() + String(u"/echo\0more", 10)), u"refused");
  server.Stop();
  EXPECT_EQ(ReadAll(server.url()), u"refused");
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
  // No code page but UTF-8 has both.
  EXPECT_EQ(InSystemCodePage({u"plain", u"\u0141\u5C71"}).has_value(), GetACP() == CP_UTF8);
}

}  // namespace
}  // namespace kestrelon
