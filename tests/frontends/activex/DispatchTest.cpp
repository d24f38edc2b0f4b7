// The control as script engines and C++ programs call it through IDispatch.

#include <gtest/gtest.h>

#include <cfloat>
#include <functional>

#include "Control/InterfaceTable.h"
#include "frontends/activex/ClassFactory.h"
#include "platform/windows/ComErrors.h"
#include "tests/frontends/activex/Calls.h"

namespace kestrelon {
namespace {

using namespace testing;

constexpr DISPID kFindFile = 0x6003000F;
constexpr DISPID kGetVersion = 0x60030016;

// An object of a page, which runs its script when its text is wanted.
class PageObject final : public DispatchObject {
 public:
  explicit PageObject(std::function<void()> script) : script_(std::move(script)) {}
  Value Invoke(InvokeKind, StringView, const Arguments&) override {
    script_();
    return u"C:\\no such file";
  }
  String TypeName() const override { return u"PageObject"; }

 private:
  const std::function<void()> script_;
};

class ControlDispatch : public ::testing::Test {
 protected:
  ControlDispatch() {
    Check(MakeComObject<ClassFactory>()->CreateInstance(nullptr, IID_PPV_ARGS(&control)));
  }
  Outcome Invoke(DISPID id, WORD flags = kScriptCall, std::vector<VARIANT> arguments = {},
                 std::vector<DISPID> names = {}) {
    IDispatch& called = *control.Get();
    return Perform(arguments, names, [&](DISPPARAMS& parameters, auto... rest) {
      return called.Invoke(id, IID_NULL, kEnglish, flags, &parameters, rest...);
    });
  }
  // Runs the script in the midst of a call.
  void RunWithin(std::function<void()> script) {
    const Value object = DispatchPointer(std::make_shared<PageObject>(std::move(script)));
    EXPECT_EQ(Invoke(kFindFile, kScriptCall, {Variant(object)}).result, "11:False");
  }

  ComPtr<IDispatch> control;
};

TEST_F(ControlDispatch, FindsAllMembersByNameAndId) {
  EXPECT_EQ(InterfaceTable().size(), 54u);
  for (const Member& member : InterfaceTable()) {
    SCOPED_TRACE(ToUtf8(member.name));
    std::vector<String> names = {UpperCase(member.name)};
    for (const Parameter& parameter : member.parameters) names.push_back(LowerCase(parameter.name));
    names.push_back(u"unknown");
    std::vector<LPOLESTR> pointers;
    for (String& name : names) pointers.push_back(const_cast<wchar_t*>(AsWide(name)));
    std::vector<DISPID> ids(names.size());
    const auto count = static_cast<UINT>(names.size());
    EXPECT_EQ(control->GetIDsOfNames(IID_NULL, pointers.data(), count, 0, ids.data()),
              DISP_E_UNKNOWNNAME);
    EXPECT_EQ(control->GetIDsOfNames(IID_NULL, pointers.data(), count - 1, 0, ids.data()), S_OK);
    EXPECT_EQ(ids.front(), static_cast<DISPID>(member.dispid));
    for (UINT i = 1; i < count - 1; ++i) EXPECT_EQ(ids[i], static_cast<DISPID>(i - 1));
    EXPECT_EQ(ids.back(), DISPID_UNKNOWN);
    // Too many arguments: nothing runs.
    const bool is_put = member.kind == MemberKind::kPropertyPut;
    const std::vector<VARIANT> many(20, kEmpty);
    EXPECT_EQ(Invoke(ids[0], is_put ? DISPATCH_PROPERTYPUT : kScriptCall, many).status,
              DISP_E_BADPARAMCOUNT);
    for (const WORD flags : {DISPATCH_PROPERTYGET, DISPATCH_PROPERTYPUTREF}) {
      EXPECT_EQ(Invoke(ids[0], flags, many).status, DISP_E_MEMBERNOTFOUND);
    }
  }
  LPOLESTR none = nullptr;
  DISPID id = 5;
  EXPECT_EQ(control->GetIDsOfNames(IID_NULL, &none, 1, 0, &id), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(id, DISPID_UNKNOWN);
  EXPECT_EQ(control->GetIDsOfNames(IID_NULL, nullptr, 1, 0, &id), E_POINTER);
  EXPECT_EQ(Invoke(DISPID_VALUE).status, DISP_E_MEMBERNOTFOUND);
}

TEST_F(ControlDispatch, LeavesNoErrorOfAnother) {
  ComPtr<ICreateErrorInfo> made;
  ComPtr<IErrorInfo> information;
  ASSERT_EQ(CreateErrorInfo(&made), S_OK);
  ASSERT_EQ(made.As(&information), S_OK);
  SetErrorInfo(0, information.Get());
  EXPECT_EQ(Invoke(kFindFile, kScriptCall, {kNull}).status, DISP_E_TYPEMISMATCH);
  EXPECT_EQ(GetErrorInfo(0, &information), S_FALSE) << "a client would take it for the reason";
}

TEST_F(ControlDispatch, IsBusyAndStaysWhileAMemberWorks) {
  Outcome meanwhile;
  RunWithin([&] { meanwhile = Invoke(kGetVersion); });
  EXPECT_EQ(meanwhile.status, DISP_E_EXCEPTION);
  EXPECT_EQ(meanwhile.scode, RPC_E_SERVERCALL_RETRYLATER);
  EXPECT_EQ(meanwhile.source, u"KNControl2005");
  EXPECT_FALSE(meanwhile.description.empty());
  EXPECT_EQ(Invoke(kGetVersion).status, S_OK);
  RunWithin([&] {
    const int32_t alive = live_objects;
    control.Reset();
    EXPECT_EQ(live_objects, alive);
  });
}

TEST_F(ControlDispatch, CalculatesInTheSameWayForEveryHost) {
  const bool has_precision = sizeof(void*) == 4;  // with 64 bits every type has its own
  const unsigned settings = _MCW_EM | _MCW_RC | (has_precision ? _MCW_PC : 0);
  const unsigned before = _control87(0, 0);
  unsigned inside = 0;
  const unsigned of_host = _control87(_EM_INEXACT | _RC_CHOP | _PC_24, settings);
  RunWithin([&] { inside = _control87(0, 0); });
  const unsigned after = _control87(0, 0);
  _control87(before, settings);
  EXPECT_EQ(inside & settings, _MCW_EM | (has_precision ? _PC_53 : 0u));
  EXPECT_EQ(after, of_host);
}

}  // namespace
}  // namespace kestrelon
