// Who may call the control: pages, applications and scripts, on a machine with its own zones,
// allow-list and kill flags.

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "frontends/activex/ClassFactory.h"
#include "frontends/activex/HostSite.h"
#include "frontends/activex/Registry.h"
#include "platform/windows/ComErrors.h"
#include "tests/frontends/activex/Calls.h"
#include "tests/frontends/activex/StandInHost.h"

namespace kestrelon {
namespace {

using namespace testing;

const std::string kZones =
    "Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings\\ZoneMap\\Domains\\";
constexpr char kAllowList[] = "SOFTWARE\\Kestrelon\\KestrelonControl2005\\AllowedSites";
constexpr char kPolicy[] = "SOFTWARE\\Policies\\Kestrelon\\KestrelonControl2005\\AllowedSites";
constexpr char kKillFlags[] =
    "SOFTWARE\\Microsoft\\Internet Explorer\\ActiveX Compatibility\\"
    "{464659AF-EFF8-4458-A26F-CF8BAA70BCAF}";

// A key of the registry for the time of a test.
class TestKey {
 public:
  TestKey(HKEY root, const std::string& path, REGSAM view = KEY_WOW64_64KEY)
      : root_(root), path_(path), view_(view) {
    EXPECT_EQ(key_.Create(root, FromUtf8(path), KEY_ALL_ACCESS | view), ERROR_SUCCESS);
  }
  TestKey(HKEY root, const std::string& path, const char* name, DWORD number)
      : TestKey(root, path) {
    Set(name, number);
  }
  ~TestKey() { EXPECT_EQ(RegDeleteKeyExA(root_, path_.c_str(), view_, 0), ERROR_SUCCESS); }
  void Set(const std::string& name, const std::string& text, DWORD type = REG_SZ) {
    RegSetKeyValueA(key_.get(), nullptr, name.c_str(), type, text.c_str(),
                    static_cast<DWORD>(text.size() + 1));
  }
  void Set(const std::string& name, DWORD number) {
    RegSetKeyValueA(key_.get(), nullptr, name.c_str(), REG_DWORD, &number, sizeof(number));
  }

 private:
  const HKEY root_;
  const std::string path_;
  const REGSAM view_;
  RegistryKey key_;
};

class Access : public ::testing::Test {
 protected:
  Access() {
    for (const char* entry :
         {"https://allowed.test", "https://ported.test:8443/", "HTTP://Plain.test:80",
          "https://path.test/crm", "https://fragment.test/#a", "https://*.wild.test",
          "https://user@named.test", "bare.test", "ftp://files.test", ""}) {
      allowed_.Set(std::string("site ") + entry, entry);
    }
    allowed_.Set("expanded", "https://expanded.test", REG_EXPAND_SZ);
  }

  TestKey intranet_{HKEY_CURRENT_USER, kZones + "intranet.test", "*", URLZONE_INTRANET};
  TestKey trusted_{HKEY_CURRENT_USER, kZones + "trusted.test", "https", URLZONE_TRUSTED};
  TestKey files_{HKEY_CURRENT_USER, kZones + "share.test", "file", URLZONE_INTRANET};
  TestKey restricted_{HKEY_CURRENT_USER, kZones + "restricted.test", "*", URLZONE_UNTRUSTED};
  TestKey allowed_{HKEY_LOCAL_MACHINE, kAllowList};
};

ComPtr<StandInHost> Page(StringView address) {
  return MakeComObject<StandInHost>(kContainer | kBrowser, address, address);
}
ComPtr<StandInHost> Application() { return MakeComObject<StandInHost>(kNoWay, u"", u""); }
const StringView kGood = u"https://allowed.test/crm/page.htm";
const StringView kBad = u"https://web.test/";

// A control as its client sees it.
class Client {
 public:
  Client() {
    Check(MakeComObject<ClassFactory>()->CreateInstance(nullptr, IID_PPV_ARGS(&control_)));
    Check(control_.As(&embedded_));
    Check(control_.As(&sited_));
    Check(control_.CopyTo(IID_IObjectSafety, reinterpret_cast<void**>(safety_.GetAddressOf())));
  }

  void SetSite(const ComPtr<StandInHost>& host) {
    EXPECT_EQ(sited_->SetSite(static_cast<IOleClientSite*>(host.Get())), S_OK);
  }
  void SetClientSite(const ComPtr<StandInHost>& host) {
    EXPECT_EQ(embedded_->SetClientSite(host.Get()), S_OK);
  }
  bool Serves(const ComPtr<StandInHost>& host) {
    SetSite(host);
    return IsServed();
  }
  void LetGo() { EXPECT_EQ(sited_->SetSite(nullptr), S_OK); }

  // Sets the server name, which cuts the variable that holds it.
  bool IsServed() {
    Variant variable(u"http://server/page");
    const Outcome outcome =
        Perform({ByReference(variable)}, {kNewValue}, [&](DISPPARAMS& parameters, auto... rest) {
          return control_->Invoke(0x68030000, IID_NULL, 0, DISPATCH_PROPERTYPUT, &parameters,
                                  rest...);
        });
    const bool is_refused = outcome.status == DISP_E_EXCEPTION;
    EXPECT_EQ(Described(variable), is_refused ? "8:http://server/page" : "8:server");
    if (!is_refused) return true;
    EXPECT_EQ(outcome.scode, static_cast<HRESULT>(0x800A0046));
    EXPECT_EQ(outcome.description, u"Permission denied");
    return false;
  }
  HRESULT SetSafety(DWORD mask, DWORD enabled) {
    return safety_->SetInterfaceSafetyOptions(IID_IDispatch, mask, enabled);
  }
  bool Claim() { return SUCCEEDED(SetSafety(kCaller, kCaller)); }
  bool IsClaimed() {
    DWORD options[2];  // supported and enabled
    EXPECT_EQ(safety_->GetInterfaceSafetyOptions(IID_IDispatch, &options[0], &options[1]), S_OK);
    return options[1] == kCaller;
  }
  static constexpr DWORD kCaller = INTERFACESAFE_FOR_UNTRUSTED_CALLER;

 private:
  ComPtr<IDispatch> control_;
  ComPtr<IOleObject> embedded_;
  ComPtr<IObjectWithSite> sited_;
  ComPtr<IObjectSafety> safety_;
};

enum Machine { kUsual, kWithPolicy, kKilled, kKilledFor32, kOtherFlags };

struct Case {
  bool may_call;
  std::vector<StringView> addresses;  // of documents, and of their browsers unless that is given
  int ways = kContainer | kBrowser;
  Machine machine = kUsual;
  StringView browser = {};
};

TEST_F(Access, FollowsFromTheSiteItsAddressesAndTheMachine) {
  const StringView good = kGood;
  const StringView bad = kBad;
  const Case cases[] = {
      // Files, and those of other machines by their zone.
      {true, {u"file://Q:\\crm\\my page.htm", u"file://share.test/crm/page.htm"}},
      {false, {u"file://web.test/C:/page.htm", u"file://///web.test/share/page.htm"}},
      {false, {u"C:\\crm\\page.htm", u"file://web.test@share.test/page.htm"}},
      // Zones.
      {true, {u"http://crm.intranet.test/", u"https://trusted.test/a?b#c"}},
      {false, {bad, u"http://trusted.test/", u"https://restricted.test/"}},
      {false, {u"https://trusted.test@web.test/", u"https://web.test@trusted.test/"}},
      // What one reader of an address takes for a part of the host, and another for its end.
      {false, {u"https://web.test%2F.trusted.test/", u"https://web.test\n.trusted.test/"}},
      {false, {StringView(u"https://allowed.test\0.web.test/", 31)}},
      // The allow-list, and what its entries must not be.
      {true, {good, u"HTTPS://ALLOWED.TEST:443", u"https://ported.test:8443/x"}},
      {true, {u"http://plain.test/"}},
      {false, {u"http://allowed.test/", u"https://allowed.test:8443/", u"https://ported.test/"}},
      {false, {u"https://crm.allowed.test/", u"https://xallowed.test/"}},
      {false, {u"https://path.test/crm", u"https://fragment.test/#a", u"https://a.wild.test/"}},
      {false, {u"https://named.test/", u"https://bare.test/", u"ftp://files.test/"}},
      {false, {u"https://expanded.test/"}},
      // No addresses of a page, or of what it comes from.
      {false, {u"about:blank", u"javascript:'https://allowed.test/'", u"", u"!"}},
      {false, {u"view-source:https://allowed.test/", u"res://intranet.test/page.htm"}},
      // Every way to the page; its documents count before the browser that shows them.
      {true, {good}, kDocument},
      {false, {bad}, kDocument},
      {true, {good}, kPageWindow},
      {false, {bad, u"!"}, kPageWindow},
      {false, {bad}, kItself},
      {true, {u""}, kBrowser, kUsual, good},
      {true, {good}, kContainer | kBrowser, kUsual, bad},
      {false, {u""}, kBrowser, kUsual, bad},
      {false, {bad, u"!"}, kDocument | kBrowser, kUsual, good},
      {false, {u""}, kBrowser, kUsual, u"!"},
      {false, {u""}, kHiddenBrowser},
      {true, {u""}, kNoWay},
      // Policy and kill flags.
      {true, {u"https://policy.test/", u"https://trusted.test/"}, kContainer, kWithPolicy},
      {false, {good}, kContainer, kWithPolicy},
      {false, {good, u"file:///C:/crm/page.htm"}, kContainer, kKilled},
      {false, {good}, kContainer, kKilledFor32},
      {true, {good}, kContainer, kOtherFlags},
      {true, {u""}, kNoWay, kKilled},
  };
  for (const Case& row : cases) {
    std::optional<TestKey> key;
    if (row.machine == kWithPolicy) {
      key.emplace(HKEY_LOCAL_MACHINE, kPolicy).Set("1", "https://policy.test");
    } else if (row.machine != kUsual) {
      const REGSAM view = row.machine == kKilledFor32 ? KEY_WOW64_32KEY : KEY_WOW64_64KEY;
      key.emplace(HKEY_LOCAL_MACHINE, kKillFlags, view)
          .Set("Compatibility Flags", row.machine == kOtherFlags ? 0x200 : 0x600);
    }
    for (const StringView address : row.addresses) {
      for (const bool is_client_site : {false, true}) {
        SCOPED_TRACE(ToUtf8(address) + ", ways " + std::to_string(row.ways) + ", machine " +
                     std::to_string(row.machine));
        const auto host = MakeComObject<StandInHost>(row.ways, address,
                                                     row.browser.empty() ? address : row.browser);
        Client client;
        is_client_site ? client.SetClientSite(host) : client.SetSite(host);
        EXPECT_EQ(client.IsServed(), row.may_call);
        const bool is_safe = row.may_call && row.ways != kNoWay;
        EXPECT_EQ(client.Claim(), is_safe);
        EXPECT_EQ(client.IsClaimed(), is_safe);
        EXPECT_EQ(client.IsServed(), row.may_call);
      }
    }
  }
}

TEST_F(Access, FindsTheBrowserHoweverItIsOffered) {
  for (const GUID& service : {__uuidof(IWebBrowserApp), __uuidof(IWebBrowser2)}) {
    const auto host = MakeComObject<StandInHost>(kBrowser, u"", kBad);
    host->browser_service = service;
    for (const IID& iid : {service, __uuidof(IWebBrowser2)}) {
      host->OfferBrowserAs(iid);
      Client client;
      EXPECT_FALSE(client.Serves(host));
    }
  }
}

TEST_F(Access, EndsWhenThePageNavigates) {
  Client client;
  const auto page = Page(kGood);
  client.SetSite(page);
  ASSERT_TRUE(client.Claim());
  ASSERT_TRUE(client.IsServed());
  page->document_address = kBad;
  EXPECT_FALSE(client.IsClaimed());
  EXPECT_FALSE(client.IsServed());
  page->document_address = kGood;
  EXPECT_FALSE(client.Serves(page)) << "it is the page that was refused";
  EXPECT_TRUE(client.Serves(Page(kGood))) << "another one is not";
}

TEST_F(Access, EndsWithThePage) {
  Client client;
  EXPECT_TRUE(client.IsServed()) << "hosts without a site";
  client.SetSite(Application());
  client.LetGo();
  EXPECT_TRUE(client.IsServed());
  const auto page = Page(kGood);
  ASSERT_TRUE(client.Serves(page));
  page->ways = kNoWay;
  EXPECT_FALSE(client.IsServed()) << "a page that is gone is no application";
  client.LetGo();
  client.LetGo();
  EXPECT_FALSE(client.IsServed());
  EXPECT_FALSE(client.Claim());
  client.SetClientSite(Page(kGood));
  EXPECT_TRUE(client.IsServed());
}

TEST_F(Access, TakesTheConsentOfAllSitesAndDocuments) {
  Client client;
  client.SetSite(Page(kGood));
  client.SetClientSite(Page(kBad));
  EXPECT_FALSE(client.IsServed());
  client.SetClientSite(Application());
  EXPECT_TRUE(client.IsServed());
  client.LetGo();
  EXPECT_FALSE(client.IsServed()) << "the page has taken its site away";

  const auto page = MakeComObject<StandInHost>(kContainer | kDocument, kBad, u"");
  page->when_asked = [&] {
    page->document_address = page->document_address == kGood ? kBad : kGood;
  };
  client.SetClientSite(page);
  EXPECT_FALSE(client.IsServed()) << "one of its two documents is not allowed";
}

TEST_F(Access, SurvivesAHostThatChangesItsSiteWhenAsked) {
  Client client;
  auto page = Page(kGood);
  ASSERT_TRUE(client.Serves(page));
  page->when_asked = [&] {
    page.Reset();
    client.LetGo();
  };
  EXPECT_FALSE(client.IsServed());

  page = Page(kBad);
  page->when_asked = [&, is_first = true]() mutable {
    if (std::exchange(is_first, false)) client.SetSite(Page(kGood));
  };
  EXPECT_TRUE(client.Serves(page)) << "the answer of the first page is not the second one's";

  page = Page(kGood);
  client.SetSite(page);
  page->when_asked = [&] { client.SetSite(Application()); };
  EXPECT_FALSE(client.IsServed()) << "nor is it in the middle of a call";
}

TEST_F(Access, IsForPagesAloneOnceSafetyIsClaimed) {
  for (const auto& host : {Page(kGood), Page(kBad), Application()}) {
    const bool may_call = host->document_address == kGood;
    Client client;
    EXPECT_FALSE(client.IsClaimed());
    ASSERT_TRUE(client.Claim()) << "script engines ask before they give a site";
    EXPECT_TRUE(client.IsClaimed());
    EXPECT_FALSE(client.IsServed());
    client.SetSite(host);
    EXPECT_EQ(client.IsClaimed(), may_call);
    EXPECT_EQ(client.IsServed(), may_call);
  }

  Client client;
  EXPECT_EQ(client.SetSafety(0, Client::kCaller), S_OK);
  EXPECT_FALSE(client.IsClaimed());
  EXPECT_EQ(client.SetSafety(INTERFACESAFE_FOR_UNTRUSTED_DATA, 0), E_FAIL);
  ASSERT_TRUE(client.Claim());
  EXPECT_EQ(client.SetSafety(Client::kCaller, 0), S_OK);
  EXPECT_FALSE(client.IsClaimed());
  EXPECT_TRUE(client.IsServed());
  TestKey flags(HKEY_LOCAL_MACHINE, kKillFlags, "Compatibility Flags", 0x400);
  EXPECT_FALSE(client.Claim());
}

TEST_F(Access, LeadsBackToTheHostAndItsWindow) {
  HostSite host;
  ComPtr<IOleClientSite> site;
  EXPECT_EQ(host.GetSite(IID_PPV_ARGS(&site)), E_FAIL);
  EXPECT_EQ(host.GetClientSite(&site), S_OK);
  EXPECT_EQ(host.Window(), nullptr);
  const auto page = Page(kGood);
  page->OfferBrowserAs(__uuidof(IWebBrowserApp));
  host.SetSite(static_cast<IOleClientSite*>(page.Get()));
  host.SetClientSite(page.Get());
  EXPECT_EQ(host.GetSite(IID_PPV_ARGS(&site)), S_OK);
  EXPECT_EQ(site.Get(), page.Get());
  EXPECT_EQ(host.GetClientSite(&site), S_OK);
  EXPECT_EQ(site.Get(), page.Get());
  for (HWND* const window : {&page->browser_window, &page->window}) {
    *window = CreateWindowA("STATIC", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    EXPECT_EQ(host.Window(), *window) << "the nearest";
  }
  DestroyWindow(page->window);
  EXPECT_EQ(host.Window(), page->browser_window) << "the other is a window no more";
  DestroyWindow(page->browser_window);
}

}  // namespace
}  // namespace kestrelon
