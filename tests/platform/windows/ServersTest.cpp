#include <gmock/gmock.h>

#include "outlook/SortTable.h"
#include "platform/windows/ComErrors.h"
#include "platform/windows/DispatchClient.h"
#include "platform/windows/WindowsPlatform.h"
#include "tests/support/Failures.h"

namespace kestrelon {
namespace {

using ::testing::AnyOf;

constexpr StringView kDocument = u"Msxml2.DOMDocument";

class ServersTest : public ::testing::Test {
 protected:
  int32_t NumberOfCreating(StringView prog_id, StringView server = {}) {
    return NumberOf([&] { platform_.CreateObject(prog_id, server); });
  }
  // As a page makes it: its language is left alone.
  static Object PageDocument(StringView markup) {
    CLSID clsid{};
    ComPtr<IUnknown> made;
    Check(CLSIDFromProgID(AsWide(String(kDocument)), &clsid));
    Check(CoCreateInstance(clsid, nullptr, CLSCTX_SERVER, IID_PPV_ARGS(&made)));
    const Object document = ObjectOf(made.Get());
    EXPECT_TRUE(document.Call(u"loadXML", markup).ToBoolean());
    return document;
  }

  WindowsPlatform platform_{[] { return HWND(); }};
};

TEST_F(ServersTest, CreatesHereAndOnNamedServers) {
  std::wstring name(MAX_COMPUTERNAME_LENGTH + 1, L'\0');
  DWORD size = static_cast<DWORD>(name.size());
  ASSERT_TRUE(GetComputerNameW(name.data(), &size));
  const String machine = FromWide({name.data(), size});
  for (const String& server : {String(), String(u"127.0.0.1"), String(u"LocalHost"), machine}) {
    EXPECT_EQ(NumberOfCreating(kDocument, server), 0) << ToUtf8(server);
    EXPECT_EQ(NumberOfCreating(u"Kestrelon.NoSuchServer", server), kCannotCreateObject);
  }
  // A system without calls over the network does not get as far as looking for the machine.
  EXPECT_THAT(NumberOfCreating(kDocument, u"no-such-machine.invalid"),
              AnyOf(kServerUnavailable, kCannotCreateObject));
}

TEST_F(ServersTest, CannotCreateWhatIsRegisteredButNotThere) {
  const std::wstring clsid = L"{0B5D2A52-5F3B-4A51-9C5C-3A0B7B1D6E11}";
  const std::wstring keys[] = {L"Kestrelon.MissingServer\\CLSID",
                               L"CLSID\\" + clsid + L"\\InprocServer32",
                               L"CLSID\\" + clsid + L"\\LocalServer32"};
  const auto write = [](const std::wstring& key, const std::wstring& value) {
    return RegSetKeyValueW(HKEY_CLASSES_ROOT, key.c_str(), nullptr, REG_SZ, value.c_str(),
                           static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
  };
  ASSERT_EQ(write(keys[0], clsid), ERROR_SUCCESS);
  EXPECT_EQ(NumberOfCreating(u"Kestrelon.MissingServer"), kCannotCreateObject);
  for (const std::wstring& key : {keys[1], keys[2]}) {
    ASSERT_EQ(write(key, L"C:\\no such folder\\server.bin"), ERROR_SUCCESS);
    EXPECT_EQ(NumberOfCreating(u"Kestrelon.MissingServer"), kCannotCreateObject);
    RegDeleteTreeW(HKEY_CLASSES_ROOT, (L"CLSID\\" + clsid).c_str());
  }
  RegDeleteTreeW(HKEY_CLASSES_ROOT, L"Kestrelon.MissingServer");
}

TEST_F(ServersTest, FindsOnlyWhatRuns) {
  const auto number_of_getting = [&] {
    return NumberOf([&] { platform_.GetRunningObject(kDocument); });
  };
  EXPECT_EQ(number_of_getting(), kCannotCreateObject);
  EXPECT_EQ(NumberOf([&] { platform_.GetRunningObject(u"Kestrelon.NoSuchServer"); }),
            kCannotCreateObject);
  const Object document = PageDocument(u"<running/>");
  CLSID clsid{};
  DWORD registration = 0;
  ASSERT_EQ(CLSIDFromProgID(AsWide(String(kDocument)), &clsid), S_OK);
  ASSERT_EQ(
      RegisterActiveObject(std::static_pointer_cast<DispatchClient>(document.pointer())->dispatch(),
                           clsid, ACTIVEOBJECT_STRONG, &registration),
      S_OK);
  const Object running = platform_.GetRunningObject(kDocument);
  EXPECT_EQ(running.GetChild(u"documentElement").Get(u"nodeName").ToText(), u"running");
  RevokeActiveObject(registration, nullptr);
  EXPECT_EQ(number_of_getting(), kCannotCreateObject);
}

TEST_F(ServersTest, AsksItsOwnDocumentsInXPath) {
  for (const StringView prog_id :
       {kDocument, StringView(u"MSXML2.DOMDocument.3.0"), StringView(u"Msxml2.DOMDocument.6.0"),
        StringView(u"Microsoft.XMLDOM")}) {
    const Object document = platform_.CreateObject(prog_id, {});
    document.Call(u"loadXML", u"<a><b c='1'/><b c='2'/></a>");
    // The old language counts from 0.
    const Object first = document.CallChild(u"selectSingleNode", u"a/b[1]");
    EXPECT_EQ(first.Call(u"getAttribute", u"c").ToText(), u"1") << ToUtf8(prog_id);
    EXPECT_NE(NumberOf([&] { document.Call(u"selectSingleNode", u"a/b[@c='O'Neill']"); }), 0);
  }
}

// So that the control need not change a document that belongs to the page.
TEST_F(ServersTest, FindsTheSameInAPagesDocumentInEitherLanguage) {
  const Object document = PageDocument(
      u"<record><Data n='1'/><Data n='2'/><listitemname listkey='a'/>"
      u"<listitemname listkey='a b' n='3'/><listitemname listkey='A b'/></record>");
  for (const StringView language : {u"XSLPattern", u"XPath"}) {
    document.Call(u"setProperty", u"SelectionLanguage", language);
    const auto number_at = [&](StringView path) {
      return document.CallChild(u"selectSingleNode", path).Call(u"getAttribute", u"n").ToText();
    };
    EXPECT_EQ(number_at(u"/record/Data"), u"1");
    EXPECT_EQ(number_at(u"record/listitemname[@listkey='a b']"), u"3");
    EXPECT_FALSE(document.CallChild(u"selectSingleNode", u"Data/quoterows"));
  }
}

TEST_F(ServersTest, SortsAList) {
  ControlContext context{platform_};
  SortTable table = {{u"b<&", u"1"}, {u"\u0001c", u"2"}, {u"a", u"3\u0141"}};
  SortAlphabetically(context, table);
  ASSERT_EQ(table.size(), 3u);
  EXPECT_EQ(table[0].payload, u"3\u0141");
  EXPECT_EQ(table[1].key, u"b<&");
  EXPECT_EQ(table[2].payload, u"2");
}

}  // namespace
}  // namespace kestrelon
