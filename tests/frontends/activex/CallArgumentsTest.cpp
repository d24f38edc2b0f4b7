// Arguments of every type on their way to a member and back.

#include <gtest/gtest.h>

#include "frontends/activex/ClassFactory.h"
#include "frontends/activex/MemberDispatch.h"
#include "platform/windows/WindowsPlatform.h"
#include "tests/frontends/activex/Calls.h"

namespace kestrelon {
namespace {

using namespace testing;

// Has a default member, a property or a method, that is never run where it can be read. Its value
// is Null for no such member, and omitted for the object itself.
class WithDefault final : public DispatchObject, public std::enable_shared_from_this<WithDefault> {
 public:
  WithDefault(Value value, bool is_method) : value_(std::move(value)), is_method_(is_method) {}
  Value Invoke(InvokeKind kind, StringView, const Arguments&) override {
    if (value_.IsNull() || is_method_ == (kind == InvokeKind::kGet)) {
      throw AutomationError(kMemberNotFound);
    }
    return value_.IsOmitted() ? DispatchPointer(shared_from_this()) : value_;
  }
  String TypeName() const override { return u"WithDefault"; }

 private:
  const Value value_;
  const bool is_method_;
};

Value ObjectWithDefault(Value value, bool is_method = false) {
  return DispatchPointer(std::make_shared<WithDefault>(std::move(value), is_method));
}

template <typename T>
T Echo(ControlContext&, T& value) {
  return value;
}

String Join(ControlContext&, String& text, bool& flag, int16_t& number, String& more) {
  return text + u"," + Value(flag).ToText() + u"," + Value(int32_t{number}).ToText() + u"," + more;
}

class CallingMembers : public ::testing::Test {
 protected:
  Outcome Call(const Member& member, std::vector<VARIANT> arguments,
               std::vector<DISPID> names = {}) {
    return Perform(arguments, names, [&](DISPPARAMS& parameters, auto... rest) {
      return CallMember(control, member, locale, parameters, rest...);
    });
  }
  // What the argument arrives as, or the failure in hexadecimal digits.
  template <typename T>
  std::string Arrives(const VARIANT& argument) {
    const Outcome outcome = Call(Describe(u"Echo", 1, &Echo<T>, {Required(u"value")}), {argument});
    if (SUCCEEDED(outcome.status)) return outcome.result;
    EXPECT_EQ(outcome.failed_argument, 0u);
    char digits[9];
    std::snprintf(digits, sizeof digits, "%08lX", outcome.status);
    return digits;
  }

  LCID locale = kEnglish;
  WindowsPlatform windows{[] { return HWND(); }};
  KestrelonControl control{windows};
};

const char* const kMismatch = "80020005";
const char* const kOverflowing = "8002000A";

TEST_F(CallingMembers, ConvertsEveryTypeToEveryParameter) {
  Variant twelve(u"12");
  Variant array(Value(Value::Array{1, u"b"}));
  VARIANT variable = twelve;
  VARIANT reference = ByReference(variable);
  double fraction = 2.5;
  struct Row {
    const char* what;
    VARIANT argument;
    std::string text, boolean, integer;
  };
  const Row rows[] = {
      {"text", twelve, "8:12", "11:True", "2:12"},
      {"no text", Plain(VT_BSTR, nullptr), "8:", kMismatch, kMismatch},
      {"integer", Number(-1), "8:-1", "11:True", "2:-1"},
      {"wide", Number(70000), "8:70000", "11:True", kOverflowing},
      {"date", Plain(VT_DATE, 2.0), "8:1/1/1900", "11:True", "2:2"},
      {"true", Plain(VT_BOOL, VARIANT_TRUE), "8:True", "11:True", "2:-1"},
      {"empty", kEmpty, "8:", "11:False", "2:0"},
      {"null", kNull, kMismatch, kMismatch, kMismatch},
      {"error", Plain(VT_ERROR, E_FAIL), kMismatch, kMismatch, kMismatch},
      {"array", array, kMismatch, kMismatch, kMismatch},
      {"nothing", Plain(VT_DISPATCH, nullptr), kMismatch, kMismatch, kMismatch},
      {"variable", ByReference(reference), "8:12", "11:True", "2:12"},
      {"double variable", Plain(VT_R8 | VT_BYREF, &fraction), "8:2.5", "11:True", "2:2"},
      {"text variable", Plain(VT_BSTR | VT_BYREF, &twelve.bstrVal), "8:12", "11:True", "2:12"},
      {"nowhere", Plain(VT_BSTR | VT_BYREF, nullptr), kMismatch, kMismatch, kMismatch},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    EXPECT_EQ(Arrives<String>(row.argument), row.text);
    EXPECT_EQ(Arrives<bool>(row.argument), row.boolean);
    EXPECT_EQ(Arrives<int16_t>(row.argument), row.integer);
    const bool is_none = row.argument.vt <= VT_NULL || row.argument.vt == VT_DISPATCH;
    EXPECT_EQ(Arrives<XmlDocument>(row.argument), is_none ? "9:" : kMismatch);
  }
  EXPECT_EQ(Arrives<Value>(ByReference(reference)), "8:12");
  EXPECT_EQ(Arrives<Value>(Plain(VT_ERROR, E_FAIL)), kMismatch);
  VARIANT endless = ByReference(endless);
  EXPECT_EQ(Arrives<Value>(endless), kMismatch);
  locale = kGerman;
  EXPECT_EQ(Arrives<String>(Plain(VT_R8, 2.5)), "8:2,5");
}

TEST_F(CallingMembers, TakesObjectsAndAsksThemForTheirDefaultMember) {
  const auto text_of = [&](const Value& value) { return Arrives<String>(Variant(value)); };
  const Variant object(ObjectWithDefault(u"12"));
  EXPECT_EQ(Arrives<Object>(Plain(VT_UNKNOWN | VT_BYREF, &object.punkVal)), "9:");
  EXPECT_EQ(Arrives<Value>(object), "9:");
  EXPECT_EQ(Arrives<int16_t>(Plain(VT_DISPATCH | VT_BYREF, &object.pdispVal)), "2:12");
  EXPECT_EQ(text_of(ObjectWithDefault(true, true)), "8:True");
  EXPECT_EQ(text_of(ObjectWithDefault(ObjectWithDefault(u"inner"))), "8:inner");
  EXPECT_EQ(text_of(ObjectWithDefault(Value::Null())), kMismatch);
  EXPECT_EQ(text_of(ObjectWithDefault(Value::Omitted())), kMismatch) << "is its own default";
  ComPtr<IUnknown> not_late_bound = MakeComObject<ClassFactory>();
  EXPECT_EQ(Arrives<Object>(Plain(VT_UNKNOWN, not_late_bound.Get())), kMismatch);
}

TEST_F(CallingMembers, PlacesArgumentsAndFillsDefaults) {
  const Member member = Describe(u"Join", 1, &Join,
                                 {Required(u"text"), Optional(u"flag", true), Required(u"number"),
                                  Optional(u"more", u"HTML")});
  const VARIANT one = Number(1);
  const VARIANT two = Number(2);
  struct Row {
    std::vector<VARIANT> arguments;
    std::vector<DISPID> names;
    HRESULT status;
    std::string result;
    UINT failed_argument = kNoPlace;
  };
  const Row rows[] = {
      {{one, two, kEmpty, Number(3)}, {}, S_OK, "8:3,False,2,1"},
      {{two, kSkipped, one}, {}, S_OK, "8:1,True,2,HTML"},
      {{one, two}, {0, 2}, S_OK, "8:1,True,2,HTML"},
      {{kNull, one, two}, {1, 2}, DISP_E_TYPEMISMATCH, "0:", 0},
      {{kEmpty, one, two}, {3, 2}, S_OK, "8:2,True,1,"},
      {{one}, {}, DISP_E_BADPARAMCOUNT, "0:"},
      {{one, one, one, one, one}, {}, DISP_E_BADPARAMCOUNT, "0:"},
      {{one, two}, {}, DISP_E_PARAMNOTOPTIONAL, "0:"},
      {{kSkipped, one, two}, {}, DISP_E_PARAMNOTOPTIONAL, "0:", 0},
      {{one, two}, {2, 2}, DISP_E_PARAMNOTFOUND, "0:", 1},
      {{one, two}, {0}, DISP_E_PARAMNOTFOUND, "0:", 0},
      {{one, two}, {0, 4}, DISP_E_PARAMNOTFOUND, "0:", 1},
      {{one, two}, {0, kNewValue}, DISP_E_PARAMNOTFOUND, "0:", 1},
      {{one}, {0, 2}, E_INVALIDARG, "0:"},
  };
  for (size_t i = 0; i < std::size(rows); ++i) {
    SCOPED_TRACE(i);
    const Outcome outcome = Call(member, rows[i].arguments, rows[i].names);
    EXPECT_EQ(outcome.status, rows[i].status);
    EXPECT_EQ(outcome.result, rows[i].result);
    EXPECT_EQ(outcome.failed_argument, rows[i].failed_argument);
  }
}

// A member that stores `new_value` and may fail then.
Value new_value;
bool fails_after_storing;
template <typename T>
void Store(ControlContext&, T& value) {
  value = interface_detail::FromValue<T>(new_value);
  if (fails_after_storing) throw AutomationError(kPathNotFound);
}
template <typename T>
const Member kStore = Describe(u"Store", 1, &Store<T>, {Required(u"value")});

TEST_F(CallingMembers, WritesBackWhatTheMemberChangedAlsoWhenItFails) {
  const Value object = ObjectWithDefault(u"");
  struct Row {
    Value variable, stored;
    VARTYPE reference;  // VT_VARIANT: a script's variable
    std::string after;
    const Member& member = kStore<String>;
  };
  const Row rows[] = {
      {u"a", u"12", VT_VARIANT, "8:12"},
      {5, u"12", VT_VARIANT, "8:12"},
      {5, u"5", VT_VARIANT, "3:5"},
      {u"a", u"12", VT_BSTR, "8:12"},
      {5, u"12", VT_I4, "3:12"},
      {5, u"word", VT_I4, "3:5"},
      {2.5, u"12", VT_R8, "5:12"},
      {true, u"False", VT_BOOL, "11:False"},
      {Date{2}, u"1/2/1900", VT_DATE, "7:1/2/1900"},
      {u"5", 7, VT_VARIANT, "2:7", kStore<int16_t>},
      {u"1", false, VT_VARIANT, "11:False", kStore<bool>},
      {Value::Array{1}, 2.5, VT_VARIANT, "5:2.5", kStore<Value>},
      {Value::Null(), Value::Array{1}, VT_VARIANT, "8204:", kStore<Value>},
      {object, u"text", VT_VARIANT, "8:text", kStore<Value>},
      {object, Object(), VT_VARIANT, "9:", kStore<Object>},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.after);
    for (const bool fails : {false, true}) {
      new_value = row.stored;
      fails_after_storing = fails;
      Variant variable(row.variable);
      const VARIANT reference = row.reference == VT_VARIANT
                                    ? ByReference(variable)
                                    : Plain(row.reference | VT_BYREF, &variable.bVal);
      EXPECT_EQ(Call(row.member, {reference}).status, fails ? DISP_E_EXCEPTION : S_OK);
      EXPECT_EQ(Described(variable), row.after);
    }
  }
  VARIANT by_value = Number(5);
  DISPPARAMS parameters{&by_value, nullptr, 1, 0};
  new_value = u"12";
  EXPECT_EQ(CallMember(control, kStore<String>, locale, parameters, nullptr, nullptr, nullptr),
            DISP_E_EXCEPTION);
  EXPECT_EQ(Described(by_value), "3:5") << "what is no reference stays";
}

}  // namespace
}  // namespace kestrelon
