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

const CLSID kClassOfDocument = [] {
  CLSID clsid{};
  CLSIDFromProgID(AsWide(String(kDocument)), &clsid);
  return clsid;
}();

// Not counted: Wine keeps a reference to what was once registered.
struct FailingFactory final : IClassFactory {
  STDMETHODIMP QueryInterface(REFIID, void** object) override {
    *object = static_cast<IClassFactory*>(this);
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP CreateInstance(IUnknown*, REFIID, void** object) override {
    *object = nullptr;
    return failure;
  }
  STDMETHODIMP LockServer(BOOL) override { return S_OK; }

  HRESULT failure = E_FAIL;
};
FailingFactory failing_factory;

class ServersTest : public ::testing::Test {
 protected:
  int32_t NumberOfCreating(StringView prog_id, StringView server = {}) {
    return NumberOf([&] { platform_.CreateObject(prog_id, server); });
  }
  WindowsPlatform platform_{[] { return HWND(); }};
};

TEST_F(ServersTest, CreatesHereAndOnNamedServers) {
  const String machine = FromWide(_wgetenv(L"COMPUTERNAME"));
  for (const String& server :
       {String(), String(u"."), String(u"127.0.0.1"), String(u"LocalHost"), machine}) {
    EXPECT_EQ(NumberOfCreating(kDocument, server), 0) << ToUtf8(server);
    EXPECT_EQ(NumberOfCreating(u"Kestrelon.NoSuchServer", server), kCannotCreateObject);
  }
  // A system without calls over the network does not get as far as looking for the machine.
  EXPECT_THAT(NumberOfCreating(kDocument, u"no-such-machine.invalid"),
              AnyOf(kServerUnavailable, kCannotCreateObject));
}

TEST_F(ServersTest, TellsWhatIsNotInstalledFromOtherFailures) {
  const std::pair<HRESULT, int32_t> cases[] = {
      {static_cast<HRESULT>(0x8007007E), kCannotCreateObject},  // the server's file is gone
      {CO_E_SERVER_EXEC_FAILURE, kCannotCreateObject},
      {static_cast<HRESULT>(0x800706BA), kServerUnavailable},
      {E_NOINTERFACE, kDoesNotSupportAutomation},
      {E_FAIL, E_FAIL},
  };
  DWORD registration = 0;
  ASSERT_EQ(CoRegisterClassObject(kClassOfDocument, &failing_factory, CLSCTX_INPROC_SERVER,
                                  REGCLS_MULTIPLEUSE, &registration),
            S_OK);
  for (const auto& [failure, number] : cases) {
    failing_factory.failure = failure;
    EXPECT_EQ(NumberOfCreating(kDocument), number);
  }
  CoRevokeClassObject(registration);
}

TEST_F(ServersTest, FindsOnlyWhatRuns) {
  const auto number_of_getting = [&] {
    return NumberOf([&] { platform_.GetRunningObject(kDocument); });
  };
  EXPECT_EQ(number_of_getting(), kCannotCreateObject);
  const Object document = platform_.CreateObject(kDocument, {});
  DWORD registration = 0;
  ASSERT_EQ(
      RegisterActiveObject(std::static_pointer_cast<DispatchClient>(document.pointer())->dispatch(),
                           kClassOfDocument, ACTIVEOBJECT_STRONG, &registration),
      S_OK);
  document.Call(u"loadXML", u"<running/>");
  const Object running = platform_.GetRunningObject(kDocument);
  EXPECT_EQ(running.GetChild(u"documentElement").Get(u"nodeName").ToText(), u"running");
  RevokeActiveObject(registration, nullptr);
  EXPECT_EQ(number_of_getting(), kCannotCreateObject);
}

TEST_F(ServersTest, AsksItsOwnDocumentsInXPath) {
  for (const StringView prog_id :
       {kDocument, StringView(u"MSXML2.DOMDocument.3.0"), StringView(u"Microsoft.XMLDOM")}) {
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
  const Object document = platform_.CreateObject(kDocument, {});
  document.Call(u"loadXML",
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
