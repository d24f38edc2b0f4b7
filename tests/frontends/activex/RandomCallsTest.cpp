// Careless and hostile callers and servers, at random but the same in each run.

#include <gtest/gtest.h>

#include "Control/InterfaceTable.h"
#include "frontends/activex/MemberDispatch.h"
#include "platform/ForwardingPlatform.h"
#include "platform/windows/ComClass.h"
#include "platform/windows/DispatchClient.h"
#include "platform/windows/WindowsPlatform.h"
#include "tests/frontends/activex/Calls.h"
#include "tests/support/Dice.h"

namespace kestrelon::testing {
namespace {

// Ends a loop that a member would go on with for as long as its server lets it.
struct LoopCut {};

Dice dice;
int work_left = 0;  // of the servers, during this call

bool OnceIn(size_t times) { return dice.Roll(times) == 0; }
void Work() {
  if (--work_left < 0) throw LoopCut();
}

HRESULT Failure() {
  constexpr HRESULT kFailures[] = {E_FAIL, DISP_E_MEMBERNOTFOUND, RPC_E_CALL_REJECTED};
  return kFailures[dice.Roll(std::size(kFailures))];
}

BSTR RandomText() {
  static const std::vector<String> texts = {
      u"", u"2.5", u"#~;=~", u"contact", u"<a b='1'/>", u"\xD800", String(70000, u'x')};
  return OnceIn(10) ? nullptr : Bstr(dice.OneOf(texts)).Detach();
}

// One that its receiver owns.
VARIANT RandomVariant(int depth = 2);

class RandomServer final : public ComClass<IDispatch, IEnumVARIANT> {
 public:
  STDMETHODIMP GetTypeInfoCount(UINT* count) override { return *count = 1, S_OK; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return Failure(); }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT count, LCID, DISPID* ids) override {
    Work();
    std::fill_n(ids, count, static_cast<DISPID>(dice.Roll(9)));
    return OnceIn(200) ? Failure() : S_OK;
  }
  STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result,
                      EXCEPINFO* information, UINT*) override {
    Work();
    if (result != nullptr) *result = RandomVariant();
    if (!OnceIn(25)) return S_OK;
    if (information == nullptr || OnceIn(2)) return Failure();
    *information = {};
    information->scode = OnceIn(3) ? 0 : Failure();
    information->bstrDescription = RandomText();
    return DISP_E_EXCEPTION;
  }
  STDMETHODIMP Next(ULONG, VARIANT* element, ULONG*) override {
    Work();
    *element = RandomVariant();
    return OnceIn(5) ? S_FALSE : S_OK;
  }
  STDMETHODIMP Skip(ULONG) override { return E_NOTIMPL; }
  STDMETHODIMP Reset() override { return E_NOTIMPL; }
  STDMETHODIMP Clone(IEnumVARIANT**) override { return E_NOTIMPL; }
};

VARIANT RandomVariant(int depth) {
  const size_t kind = dice.Roll(10);
  if (kind < 4) return Plain(VT_BSTR, RandomText());
  if (kind < 7) return Plain<IDispatch*>(VT_DISPATCH, MakeComObject<RandomServer>().Detach());
  if (kind < 9 || depth == 0) {
    constexpr VARTYPE kTypes[] = {VT_EMPTY, VT_NULL, VT_I4,  VT_R8,
                                  VT_DATE,  VT_CY,   VT_PTR, VT_BYREF | VT_VARIANT};
    const VARTYPE type = kTypes[dice.Roll(std::size(kTypes))];
    const bool is_pointer = (type & VT_BYREF) != 0;
    return Plain(type, is_pointer ? int64_t{0} : static_cast<int64_t>(dice.Roll(4)) - 1);
  }
  const VARIANT array = Plain(VT_ARRAY | VT_VARIANT, SafeArrayCreateVector(VT_VARIANT, 0, 2));
  static_cast<VARIANT*>(array.parray->pvData)[dice.Roll(2)] = RandomVariant(depth - 1);
  return array;
}

// Every server is a random one, and nothing is opened or shown.
class RandomPlatform final : public ForwardingPlatform {
 public:
  using ForwardingPlatform::ForwardingPlatform;
  Object CreateObject(StringView, StringView) override {
    if (OnceIn(50)) throw AutomationError(kCannotCreateObject);
    return ObjectOf(static_cast<IDispatch*>(MakeComObject<RandomServer>().Get()));
  }
  Object GetRunningObject(StringView prog_id) override { return CreateObject(prog_id, {}); }
  int32_t ShowMessageBox(const String&, int32_t, const std::optional<String>&) override {
    return static_cast<int32_t>(dice.Roll(8));
  }
  int32_t ShellExecute(SystemHandle, const String&, const String&, const String&, const String&,
                       int32_t) override {
    return 2;
  }
  SystemHandle OpenInternetUrl(SystemHandle, const String&, uint32_t) override { return 0; }
};

// One call of `member`; whether it was answered.
bool CallAtRandom(KestrelonControl& control, const Member& member) {
  std::vector<Variant> variables(OnceIn(9) ? dice.Roll(20) : member.parameters.size());
  std::vector<VARIANT> given;
  for (Variant& variable : variables) {
    static_cast<VARIANT&>(variable) = RandomVariant();
    given.push_back(OnceIn(2) ? ByReference(variable) : VARIANT(variable));
  }
  std::vector<DISPID> names;
  while (OnceIn(9)) names.push_back(static_cast<DISPID>(dice.Roll(9)) - 4);
  const WORD flags = OnceIn(9) ? static_cast<WORD>(dice.Roll(16)) : WORD{7};
  work_left = 1000;
  const auto call = [&](DISPPARAMS& parameters, VARIANT* result, auto*... others) {
    const HRESULT status =
        InvokeMember(control, static_cast<DISPID>(member.dispid), kEnglish, flags, parameters,
                     OnceIn(9) ? nullptr : result, (OnceIn(9) ? nullptr : others)...);
    EXPECT_TRUE(SUCCEEDED(status) || result->vt == VT_EMPTY) << ToUtf8(member.name);
    VariantClear(result);  // it may be what Perform cannot describe
    return status;
  };
  return SUCCEEDED(Perform(given, names, call).status);
}

TEST(RandomCalls, EndInAnAnswerOrAFailureAndLeaveNothingBehind) {
  WindowsPlatform windows([] { return HWND(); });
  RandomPlatform platform(windows);
  std::optional<KestrelonControl> control;
  int answered = 0;
  for (int i = 0; i < 20000; ++i) {
    if (i % 100 == 0) control.emplace(platform);
    try {
      answered += CallAtRandom(*control, InterfaceTable()[dice.Roll(InterfaceTable().size())]);
    } catch (const LoopCut&) {
      // One that the behaviour leaves unbounded.
    }
  }
  EXPECT_GT(answered, 5000);
  control.reset();
  EXPECT_EQ(live_objects, 0);
}

}  // namespace
}  // namespace kestrelon::testing
