// The control as script engines and C++ programs call it through IDispatch.

#include <gtest/gtest.h>

#include <cfloat>
#include <functional>

#include "Control/InterfaceTable.h"
#include "frontends/activex/ClassFactory.h"
#include "platform/windows/ComErrors.h"
#include "tests/frontends/activex/Calls.h"
#include "tests/platform/windows/RecordingDispatch.h"

namespace kestrelon {
namespace {

using namespace testing;

constexpr DISPID kFindFile = 0x6003000F;
constexpr DISPID kGetVersion = 0x60030016;
constexpr DISPID kServerName = 0x68030000;

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

ComPtr<IDispatch> MakeControl() {
  ComPtr<IDispatch> control;
  Check(MakeComObject<ClassFactory>()->CreateInstance(nullptr, IID_PPV_ARGS(&control)));
  return control;
}

Outcome Invoke(IDispatch& control, DISPID id, WORD flags, std::vector<VARIANT> arguments = {},
               std::vector<DISPID> names = {}) {
  return Perform(arguments, names, [&](DISPPARAMS& parameters, auto... rest) {
    return control.Invoke(id, IID_NULL, kEnglish, flags, &parameters, rest...);
  });
}

TEST(ControlDispatch, FindsAllMembersByNameAndId) {
  const ComPtr<IDispatch> control = MakeControl();
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
    // Too many arguments for any: the id is known, and nothing runs.
    const bool is_put = member.kind == MemberKind::kPropertyPut;
    const std::vector<VARIANT> many(20, kEmpty);
    EXPECT_EQ(
        Invoke(*control.Get(), ids[0], is_put ? DISPATCH_PROPERTYPUT : kScriptCall, many).status,
        DISP_E_BADPARAMCOUNT);
    for (const WORD flags : {DISPATCH_PROPERTYGET, DISPATCH_PROPERTYPUTREF}) {
      EXPECT_EQ(Invoke(*control.Get(), ids[0], flags, many).status, DISP_E_MEMBERNOTFOUND);
    }
  }
  LPOLESTR none = nullptr;
  DISPID id = 5;
  EXPECT_EQ(control->GetIDsOfNames(IID_NULL, &none, 1, 0, &id), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(id, DISPID_UNKNOWN);
  EXPECT_EQ(control->GetIDsOfNames(IID_NULL, nullptr, 1, 0, &id), E_POINTER);
  EXPECT_EQ(Invoke(*control.Get(), DISPID_VALUE, kScriptCall).status, DISP_E_MEMBERNOTFOUND);
}

TEST(ControlDispatch, PutsTheServerNameAndRaisesItsError) {
  const ComPtr<IDispatch> control = MakeControl();
  Variant variable(u"http://server/app/page.aspx");
  const auto put = [&](const VARIANT& value) {
    return Invoke(*control.Get(), kServerName, DISPATCH_PROPERTYPUT, {value}, {kNewValue});
  };
  EXPECT_EQ(put(variable).status, S_OK);
  EXPECT_EQ(put(ByReference(variable)).status, S_OK);
  EXPECT_EQ(Described(variable), "8:server");
  const Outcome failed = put(ByReference(variable));
  EXPECT_EQ(failed.status, DISP_E_EXCEPTION);
  EXPECT_EQ(failed.scode, static_cast<SCODE>(0x800A000D));
  EXPECT_EQ(failed.description, u"Type mismatch");
  EXPECT_EQ(failed.source, u"KNControl2005");
  EXPECT_EQ(Described(variable), "8:server");
  DISPID name = kNewValue;
  DISPPARAMS parameters{&variable, &name, 1, 1};
  EXPECT_EQ(control->Invoke(kServerName, IID_NULL, 0, DISPATCH_PROPERTYPUT, &parameters, nullptr,
                            nullptr, nullptr),
            DISP_E_EXCEPTION);
  EXPECT_EQ(put(kNull).status, DISP_E_TYPEMISMATCH);
}

TEST(ControlDispatch, LeavesNoErrorOfAnother) {
  const ComPtr<IDispatch> control = MakeControl();
  ComPtr<ISupportErrorInfo> support;
  ASSERT_EQ(control.As(&support), S_OK);
  EXPECT_EQ(support->InterfaceSupportsErrorInfo(IID_IDispatch), S_OK);
  EXPECT_EQ(support->InterfaceSupportsErrorInfo(IID_IUnknown), S_FALSE);
  ComPtr<ICreateErrorInfo> made;
  ComPtr<IErrorInfo> information;
  ASSERT_EQ(CreateErrorInfo(&made), S_OK);
  ASSERT_EQ(made.As(&information), S_OK);
  SetErrorInfo(0, information.Get());
  EXPECT_EQ(Invoke(*control.Get(), kFindFile, kScriptCall, {kNull}).status, DISP_E_TYPEMISMATCH);
  EXPECT_EQ(GetErrorInfo(0, &information), S_FALSE) << "a client would take it for the reason";
}

TEST(ControlDispatch, IsBusyAndStaysWhileAMemberWorks) {
  ComPtr<IDispatch> control = MakeControl();
  IDispatch& called = *control.Get();
  Outcome meanwhile;
  const auto find = [&](std::function<void()> script) {
    const Value object = DispatchPointer(std::make_shared<PageObject>(std::move(script)));
    const Variant argument(object);
    return Invoke(called, kFindFile, kScriptCall, {argument}).result;
  };
  EXPECT_EQ(find([&] { meanwhile = Invoke(called, kGetVersion, kScriptCall); }), "11:False");
  EXPECT_EQ(meanwhile.status, DISP_E_EXCEPTION);
  EXPECT_EQ(meanwhile.scode, RPC_E_SERVERCALL_RETRYLATER);
  EXPECT_FALSE(meanwhile.description.empty());
  EXPECT_EQ(Invoke(called, kGetVersion, kScriptCall).status, S_OK);
  const auto let_go = [&] {
    const int32_t alive = live_objects;
    control.Reset();
    EXPECT_EQ(live_objects, alive);
  };
  EXPECT_EQ(find(let_go), "11:False");
}

TEST(ControlDispatch, CalculatesInTheSameWayForEveryHost) {
  const bool has_precision = sizeof(void*) == 4;  // with 64 bits every type has its own
  const unsigned settings = _MCW_EM | _MCW_RC | (has_precision ? _MCW_PC : 0);
  const unsigned before = _control87(0, 0);
  unsigned inside = 0;
  const auto text = MakeComObject<RecordingDispatch>();
  text->answer = [&](WORD, VARIANT* result, EXCEPINFO*) {
    inside = _control87(0, 0);
    result->bstrVal = Bstr(u"http://server/page").Detach();
    result->vt = VT_BSTR;
    return S_OK;
  };
  const ComPtr<IDispatch> control = MakeControl();
  const unsigned of_host = _control87(_EM_INEXACT | _RC_CHOP | _PC_24, settings);
  const Outcome outcome = Invoke(*control.Get(), kServerName, DISPATCH_PROPERTYPUT,
                                 {Plain(VT_DISPATCH, text.Get())}, {kNewValue});
  const unsigned after = _control87(0, 0);
  _control87(before, settings);
  EXPECT_EQ(outcome.status, S_OK);
  EXPECT_EQ(inside & settings, _MCW_EM | (has_precision ? _PC_53 : 0u));
  EXPECT_EQ(after, of_host);
}

}  // namespace
}  // namespace kestrelon
