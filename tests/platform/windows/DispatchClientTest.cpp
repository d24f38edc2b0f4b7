#include <gtest/gtest.h>

#include <future>
#include <thread>

#include "platform/windows/ComErrors.h"
#include "platform/windows/DispatchClient.h"
#include "platform/windows/WindowsPlatform.h"
#include "tests/platform/windows/RecordingDispatch.h"

namespace kestrelon::testing {
namespace {

class ClientTest : public ::testing::Test {
 protected:
  Lines Take() { return std::exchange(server_->log, {}); }
  // "NUMBER: DESCRIPTION" of a call that the server ends with `status`.
  std::string FailureWith(HRESULT status, const EXCEPINFO& information = {}) {
    server_->answer = [=](WORD, VARIANT*, EXCEPINFO* reported) {
      *reported = information;
      return status;
    };
    return FailureOf([&] { client_.Call(u"Item"); });
  }

  ComPtr<RecordingDispatch> server_ = MakeComObject<RecordingDispatch>();
  Object client_ = ObjectOf(server_.Get());
};

TEST_F(ClientTest, PassesArgumentsInTheOrderOfCom) {
  client_.Call(u"Item", 1, Value::Omitted(), u"x", Named(u"Start", true));
  EXPECT_EQ(Take(), (Lines{"?Item Start", "1 flags 3 names 10 values 11:True 8:x 10: 3:1"}));
  client_.Put(u"Name", 1, u"new", Named(u"Start", 5));
  EXPECT_EQ(Take(), (Lines{"?Name Start", "2 flags 4 names -3 10 values 8:new 3:5 3:1"}));
  client_.Get(u"");
  client_.Call(u"", 7);
  client_.PutDefault(u"v");
  EXPECT_EQ(Take(), (Lines{"0 flags 2", "0 flags 3 values 3:7", "0 flags 4 names -3 values 8:v"}));
  client_.Put(u"Name", Object());
  client_.Put(u"Name", 1);
  EXPECT_EQ(Take(),
            (Lines{"?Name", "2 flags 8 names -3 values 9:", "2 flags 4 names -3 values 3:1"}))
      << "an object by PROPERTYPUTREF; the id is asked for once";
  for (const char16_t* member : {u"None", u"Item"}) {
    EXPECT_EQ(FailureOf([&] { client_.Call(member, Named(u"No", 1)); }).substr(0, 4),
              member[0] == u'N' ? "438:" : "448:");
  }
}

TEST_F(ClientTest, AsksInAnotherWayOnlyWhenItIsTurnedDown) {
  server_->answer = [](WORD flags, VARIANT* result, EXCEPINFO*) {
    if (flags == DISPATCH_PROPERTYGET || flags == DISPATCH_PROPERTYPUTREF) {
      return DISP_E_MEMBERNOTFOUND;
    }
    if (result != nullptr) *result = Variant(Value(u"done")).Detach();
    return S_OK;
  };
  EXPECT_EQ(client_.Get(u"Name").ToText(), u"done");
  client_.Put(u"Name", client_);
  EXPECT_EQ(Take(), (Lines{"?Name", "2 flags 2", "2 flags 3",
                           "2 flags 8 names -3 values 9:", "2 flags 4 names -3 values 9:"}));
  server_->answer = [](WORD, VARIANT*, EXCEPINFO*) { return E_FAIL; };
  EXPECT_THROW(client_.Get(u"Name"), AutomationError);
  EXPECT_EQ(Take(), (Lines{"2 flags 2"}));
}

TEST_F(ClientTest, AsksInEnglishWhereTheUsersLanguageIsNotKnown) {
  for (const LCID language : {LCID{0x0409}, LCID{LOCALE_USER_DEFAULT}}) {
    server_->only_language = language;
    client_.Call(u"Item", 1, Named(u"Start", true));
    EXPECT_EQ(FailureOf([&] { client_.Enumerate(); }), "451: Object not a collection");
    EXPECT_EQ(Take(),
              (Lines{"?Item Start", "1 flags 3 names 10 values 11:True 3:1", "-4 flags 3"}));
  }
  server_->only_language = 0x0411;
  EXPECT_EQ(FailureOf([&] { client_.Call(u"Item"); }).substr(0, 11), "-2147319784");
}

HRESULT STDMETHODCALLTYPE FillInLater(EXCEPINFO* information) {
  information->bstrDescription = SysAllocString(L"Filled in later");
  information->scode = static_cast<HRESULT>(0x8004010F);
  return S_OK;
}

EXCEPINFO Information(uint32_t scode, const wchar_t* description = nullptr) {
  EXCEPINFO information{};
  information.scode = static_cast<HRESULT>(scode);
  information.bstrSource = SysAllocString(L"Source");
  information.bstrDescription = SysAllocString(description);
  return information;
}

TEST_F(ClientTest, ReportsWhatTheServerSaysOfItsFailure) {
  EXCEPINFO word = Information(0, L"Word's own");
  word.wCode = 1004;
  EXCEPINFO deferred{};
  deferred.pfnDeferredFillIn = FillInLater;
  const std::pair<EXCEPINFO, std::string> cases[] = {
      {Information(0x8004010F, L"Not found"), "-2147221233: Not found"},
      {Information(0x80040111, L"Logon"), "-2147221231: Logon"},
      {Information(0x800A0035, L"No file"), "53: No file"},
      {Information(0x800A0035), "53: File not found"},
      {Information(0x80020005, L""), "13: Type mismatch"},
      {word, "1004: Word's own"},
      {deferred, "-2147221233: Filled in later"}};
  for (const auto& [information, failure] : cases) {
    EXPECT_EQ(FailureWith(DISP_E_EXCEPTION, information), failure);
  }
  EXPECT_EQ(FailureWith(DISP_E_EXCEPTION).substr(0, 13), "-2147352567: ");
}

TEST_F(ClientTest, TellsPlainFailuresApart) {
  const std::pair<uint32_t, std::string> cases[] = {{0x80020003, "438: "},
                                                    {0x80020004, "448: "},
                                                    {0x8002000A, "6: "},
                                                    {0x8002000E, "450: "},
                                                    {0x800A0046, "70: "},
                                                    {0x80040154, "429: "},
                                                    {0x800706BA, "462: "},
                                                    {0x80004005, "-2147467259: "},
                                                    {0x8007000E, "-2147024882: "},
                                                    {0x80040111, "-2147221231: "},
                                                    {0x80004001, "-2147467263: Not implemented"}};
  for (const auto& [result, failure] : cases) {
    const std::string reported = FailureWith(static_cast<HRESULT>(result));
    EXPECT_EQ(reported.substr(0, failure.size()), failure);
    EXPECT_GT(reported.size(), reported.find(": ") + 2) << "a text for " << failure;
  }
}

HRESULT FailWithErrorInfo(WORD, VARIANT*, EXCEPINFO*) {
  ComPtr<ICreateErrorInfo> made;
  ComPtr<IErrorInfo> information;
  CreateErrorInfo(&made);
  made->SetDescription(const_cast<LPOLESTR>(L"From the error object"));
  made.As(&information);
  SetErrorInfo(0, information.Get());
  return E_FAIL;
}

TEST_F(ClientTest, ReadsTheErrorObjectOnlyOfAServerThatLeavesOne) {
  server_->answer = FailWithErrorInfo;
  EXPECT_EQ(FailureOf([&] { client_.Call(u"Item"); }).find("error object"), std::string::npos);
  server_->leaves_error_info = true;
  EXPECT_EQ(FailureOf([&] { client_.Call(u"Item"); }), "-2147467259: From the error object");
  FailWithErrorInfo(0, nullptr, nullptr);  // of another call, long ago
  EXPECT_EQ(FailureWith(E_FAIL).find("error object"), std::string::npos);
}

TEST_F(ClientTest, MayBeLetGoOfDuringItsOwnCall) {
  server_->answer = [&](WORD, VARIANT*, EXCEPINFO*) {
    client_.Release();
    server_.Reset();
    return DISP_E_MEMBERNOTFOUND;  // so that there is more to do
  };
  EXPECT_EQ(FailureOf([&] { client_.Get(u"Name"); }).substr(0, 4), "438:");
  EXPECT_FALSE(client_);
}

TEST_F(ClientTest, TellsThatAnObjectIsNoCollection) {
  for (const HRESULT result : {S_OK, DISP_E_MEMBERNOTFOUND, DISP_E_UNKNOWNNAME}) {
    server_->answer = [&](WORD, VARIANT*, EXCEPINFO*) { return result; };
    EXPECT_EQ(FailureOf([&] { client_.Enumerate(); }), "451: Object not a collection");
  }
  server_->answer = [](WORD, VARIANT*, EXCEPINFO* reported) {
    reported->scode = static_cast<HRESULT>(0x800A0046);
    return DISP_E_EXCEPTION;
  };
  EXPECT_EQ(FailureOf([&] { client_.Enumerate(); }), "70: Permission denied") << "it may be one";
}

TEST_F(ClientTest, ReachesAServerInAnotherApartment) {
  std::promise<IStream*> marshalled;
  std::promise<void> done;
  std::thread other([&] {
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    IStream* stream = nullptr;
    CoMarshalInterThreadInterfaceInStream(IID_IDispatch, ComPtr<IDispatch>(server_).Get(), &stream);
    marshalled.set_value(stream);
    done.get_future().wait();
    CoUninitialize();
  });
  ComPtr<IDispatch> proxy;
  CoGetInterfaceAndReleaseStream(marshalled.get_future().get(), IID_PPV_ARGS(&proxy));
  EXPECT_NE(proxy.Get(), ComPtr<IDispatch>(server_).Get());
  client_ = ObjectOf(std::exchange(proxy, {}).Get());

  server_->answer = [](WORD, VARIANT* result, EXCEPINFO*) {
    if (result != nullptr) *result = Variant(Value(Value::Array{u"a", 1})).Detach();
    return S_OK;
  };
  EXPECT_EQ(Describe(client_.Call(u"Item", u"x", Value::Omitted(), Named(u"Start", 2.5))),
            "8204:[8:a][3:1]");
  EXPECT_EQ(Take(), (Lines{"?Item Start", "1 flags 3 names 10 values 5:2.5 10: 8:x"}));
  client_.Put(u"Name", 3, u"new");
  EXPECT_EQ(Take(), (Lines{"?Name", "2 flags 4 names -3 values 8:new 3:3"}));

  EXCEPINFO deferred{};
  deferred.pfnDeferredFillIn = FillInLater;
  // Where the proxy does not fill in, a number is all that is left.
  EXPECT_NE(FailureWith(DISP_E_EXCEPTION, deferred), "");
  EXPECT_EQ(FailureWith(DISP_E_EXCEPTION, Information(0x800A0035, L"No file there")),
            "53: No file there");
  EXPECT_EQ(FailureOf([&] { client_.Call(u"Item", Named(u"None", 1)); }).substr(0, 4), "448:");
  client_.Release();
  done.set_value();
  other.join();
}

TEST(RealServers, AnswerAsScriptsKnowThem) {
  WindowsPlatform platform([] { return HWND(); });
  const Object files = platform.CreateObject(u"Scripting.FileSystemObject", {});
  EXPECT_FALSE(files.Get(u"GetTempName").ToText().empty()) << "a method, read as a property";
  const Value windows = files.CallChild(u"GetFolder", u"C:\\windows").GetDefault();
  EXPECT_EQ(LowerCase(windows.ToText()), u"c:\\windows");
  EXPECT_EQ(FailureOf([&] { files.Call(u"GetFolder", u"C:\\none"); }).substr(0, 3), "76:");
  EXPECT_EQ(FailureOf([&] { files.Enumerate(); }), "451: Object not a collection");
}

}  // namespace
}  // namespace kestrelon::testing
