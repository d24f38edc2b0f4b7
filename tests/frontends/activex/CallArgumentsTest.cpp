// Arguments of every type on their way to a member and back.

#include <gtest/gtest.h>

#include "frontends/activex/ClassFactory.h"
#include "frontends/activex/MemberDispatch.h"
#include "platform/ForwardingPlatform.h"
#include "platform/windows/WindowsPlatform.h"
#include "tests/frontends/activex/Calls.h"

namespace kestrelon {
namespace {

using namespace testing;

constexpr DISPID kNewAppointment = 0x60030001;

// An object with a default member, which may be a property or a method, but is never run where it
// can be read; every other member answers with the object itself. Notes what is put.
class Recorder final : public DispatchObject, public std::enable_shared_from_this<Recorder> {
 public:
  explicit Recorder(Value default_value, bool is_method = false)
      : default_value_(std::move(default_value)), is_method_(is_method) {}
  Value Invoke(InvokeKind kind, StringView member, const Arguments& arguments) override {
    if (kind == InvokeKind::kPut) puts[String(member)] = arguments.positional.back();
    if (!member.empty()) return DispatchPointer(shared_from_this());
    if (default_value_.IsNull()) throw AutomationError(kMemberNotFound);
    if (is_method_ && kind == InvokeKind::kGet) throw AutomationError(kMemberNotFound);
    if (!is_method_ && kind == InvokeKind::kCall) throw AutomationError(kInvalidProcedureCall);
    return default_value_.IsOmitted() ? DispatchPointer(shared_from_this()) : default_value_;
  }
  String TypeName() const override { return u"Recorder"; }

  std::map<String, Value> puts;

 private:
  const Value default_value_;
  const bool is_method_;
};

class RecordingPlatform final : public ForwardingPlatform {
 public:
  explicit RecordingPlatform(Platform& platform) : ForwardingPlatform(platform) {}
  Object CreateObject(StringView, StringView) override { return DispatchPointer(outlook); }

  std::shared_ptr<Recorder> outlook = std::make_shared<Recorder>(u"");
};

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
  static Variant ObjectWithDefault(Value value, bool is_method = false) {
    return Variant(Value(DispatchPointer(std::make_shared<Recorder>(value, is_method))));
  }

  LCID locale = kEnglish;
  WindowsPlatform windows{[] { return HWND(); }};
  RecordingPlatform platform{windows};
  KestrelonControl control{platform};
};

const char* const kMismatch = "80020005";
const char* const kOverflowing = "8002000A";

TEST_F(CallingMembers, ConvertsEveryTypeToEveryParameter) {
  Variant twelve(u"12");
  Variant word(u"word");
  Variant array(Value(Value::Array{1, u"b"}));
  VARIANT variable = twelve;
  VARIANT reference = ByReference(variable);
  VARIANT to_array = Plain(VT_BYREF | VT_ARRAY | VT_VARIANT, &array.parray);
  double fraction = 2.5;
  VARIANT_BOOL yes = VARIANT_TRUE;
  struct Row {
    const char* what;
    VARIANT argument;
    std::string text, boolean, integer, variant;
  };
  const Row rows[] = {
      {"text", twelve, "8:12", "11:True", "2:12", "8:12"},
      {"word", word, "8:word", kMismatch, kMismatch, "8:word"},
      {"no text", Plain(VT_BSTR, nullptr), "8:", kMismatch, kMismatch, "8:"},
      {"integer", Number(-1), "8:-1", "11:True", "2:-1", "3:-1"},
      {"wide", Number(70000), "8:70000", "11:True", kOverflowing, "3:70000"},
      {"wider", Plain(VT_I8, int64_t{1} << 40), "8:1099511627776", "11:True", kOverflowing,
       "5:1099511627776"},
      {"fraction", Plain(VT_R8, 2.5), "8:2.5", "11:True", "2:2", "5:2.5"},
      {"money", Plain(VT_CY, int64_t{15000}), "8:1.5", "11:True", "2:2", "5:1.5"},
      {"date", Plain(VT_DATE, 2.0), "8:1/1/1900", "11:True", "2:2", "7:1/1/1900"},
      {"true", Plain(VT_BOOL, VARIANT_TRUE), "8:True", "11:True", "2:-1", "11:True"},
      {"empty", kEmpty, "8:", "11:False", "2:0", "0:"},
      {"null", kNull, kMismatch, kMismatch, kMismatch, "1:"},
      {"error", Plain(VT_ERROR, E_FAIL), kMismatch, kMismatch, kMismatch, kMismatch},
      {"array", array, kMismatch, kMismatch, kMismatch, "8204:"},
      {"array variable", to_array, kMismatch, kMismatch, kMismatch, "8204:"},
      {"nothing", Plain(VT_DISPATCH, nullptr), kMismatch, kMismatch, kMismatch, "9:"},
      {"variable", ByReference(reference), "8:12", "11:True", "2:12", "8:12"},
      {"double by reference", Plain(VT_R8 | VT_BYREF, &fraction), "8:2.5", "11:True", "2:2",
       "5:2.5"},
      {"true by reference", Plain(VT_BOOL | VT_BYREF, &yes), "8:True", "11:True", "2:-1",
       "11:True"},
      {"text by reference", Plain(VT_BSTR | VT_BYREF, &twelve.bstrVal), "8:12", "11:True", "2:12",
       "8:12"},
      {"reference to nowhere", Plain(VT_BSTR | VT_BYREF, nullptr), kMismatch, kMismatch, kMismatch,
       kMismatch},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    EXPECT_EQ(Arrives<String>(row.argument), row.text);
    EXPECT_EQ(Arrives<bool>(row.argument), row.boolean);
    EXPECT_EQ(Arrives<int16_t>(row.argument), row.integer);
    EXPECT_EQ(Arrives<Value>(row.argument), row.variant);
    const bool is_none = row.argument.vt <= VT_NULL || row.argument.vt == VT_DISPATCH;
    EXPECT_EQ(Arrives<XmlDocument>(row.argument), is_none ? "9:" : kMismatch);
  }
  VARIANT endless = ByReference(endless);
  EXPECT_EQ(Arrives<Value>(endless), kMismatch);
  locale = kGerman;
  EXPECT_EQ(Arrives<String>(Plain(VT_R8, 2.5)), "8:2,5");
}

TEST_F(CallingMembers, TakesObjectsAndAsksThemForTheirDefaultMember) {
  const Variant object = ObjectWithDefault(u"12");
  EXPECT_EQ(Arrives<Object>(object), "9:");
  EXPECT_EQ(Arrives<Object>(Plain(VT_UNKNOWN | VT_BYREF, &object.punkVal)), "9:");
  EXPECT_EQ(Arrives<Value>(object), "9:");
  EXPECT_EQ(Arrives<String>(object), "8:12");
  EXPECT_EQ(Arrives<String>(ObjectWithDefault(true, true)), "8:True");
  EXPECT_EQ(Arrives<int16_t>(Plain(VT_DISPATCH | VT_BYREF, &object.pdispVal)), "2:12");
  EXPECT_EQ(Arrives<String>(
                ObjectWithDefault(Value(DispatchPointer(std::make_shared<Recorder>(u"inner"))))),
            "8:inner");
  EXPECT_EQ(Arrives<String>(ObjectWithDefault(Value::Null())), kMismatch);
  EXPECT_EQ(Arrives<bool>(ObjectWithDefault(Value::Omitted())), kMismatch) << "is its own default";
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

TEST_F(CallingMembers, WritesBackWhatTheMemberChangedAlsoWhenItFails) {
  struct Row {
    Value variable, stored;
    VARTYPE reference;  // VT_VARIANT: a script's variable
    std::string after;
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
      {true, u"word", VT_BOOL, "11:True"},
      {Date{2}, u"1/2/1900", VT_DATE, "7:1/2/1900"},
      {Value(), u"new", VT_VARIANT, "8:new"},
  };
  const Member member = Describe(u"Store", 1, &Store<String>, {Required(u"value")});
  for (const Row& row : rows) {
    SCOPED_TRACE(row.after);
    for (const bool fails : {false, true}) {
      new_value = row.stored;
      fails_after_storing = fails;
      Variant variable(row.variable);
      const VARIANT reference = row.reference == VT_VARIANT
                                    ? ByReference(variable)
                                    : Plain(row.reference | VT_BYREF, &variable.bVal);
      EXPECT_EQ(Call(member, {reference}).status, fails ? DISP_E_EXCEPTION : S_OK);
      EXPECT_EQ(Described(variable), row.after);
    }
  }
}

TEST_F(CallingMembers, WritesBackInTheTypeOfTheParameter) {
  fails_after_storing = false;
  const auto after = [&](auto* function, Value variable, Value stored) {
    new_value = std::move(stored);
    Variant own(variable);
    EXPECT_EQ(
        Call(Describe(u"Store", 1, function, {Required(u"value")}), {ByReference(own)}).status,
        S_OK);
    return Described(own);
  };
  EXPECT_EQ(after(&Store<int16_t>, u"5", 7), "2:7");
  EXPECT_EQ(after(&Store<bool>, u"1", false), "11:False");
  EXPECT_EQ(after(&Store<Value>, Value::Array{1}, 2.5), "5:2.5");
  EXPECT_EQ(after(&Store<Value>, Value::Null(), Value::Array{1}), "8204:");
  const Value object = DispatchPointer(std::make_shared<Recorder>(u""));
  EXPECT_EQ(after(&Store<Object>, object, Object()), "9:");
  EXPECT_EQ(after(&Store<Value>, object, u"text"), "8:text");

  VARIANT by_value = Number(5);
  DISPPARAMS parameters{&by_value, nullptr, 1, 0};
  const Member member = Describe(u"Store", 1, &Store<String>, {Required(u"value")});
  EXPECT_EQ(CallMember(control, member, locale, parameters, nullptr, nullptr, nullptr), S_OK);
  EXPECT_EQ(Described(by_value), "3:5") << "what is no reference stays";
}

TEST_F(CallingMembers, UsesTheTablesDefaults) {
  const Variant account(u"7");
  const Variant server(u"crm");
  const Variant folder(u"app");
  for (const bool is_secure : {false, true}) {
    std::vector<VARIANT> arguments = {folder, server, account};
    if (is_secure) arguments.insert(arguments.begin(), Plain(VT_BOOL, VARIANT_TRUE));
    const Outcome outcome = Perform(arguments, {}, [&](DISPPARAMS& parameters, auto... rest) {
      return InvokeMember(control, kNewAppointment, locale, kScriptCall, parameters, rest...);
    });
    EXPECT_EQ(outcome.status, S_OK);
    const String link = platform.outlook->puts[u"Body"].ToText();
    EXPECT_TRUE(link.starts_with(is_secure ? u"https://crm" : u"http://crm")) << ToUtf8(link);
  }
}

}  // namespace
}  // namespace kestrelon
