// Calls as script engines and C++ programs make them, down to the members and back.

#include <gtest/gtest.h>

#include <cstring>
#include <thread>

#include "frontends/activex/CallArguments.h"
#include "frontends/activex/ClassFactory.h"
#include "frontends/activex/MemberDispatch.h"
#include "platform/ForwardingPlatform.h"
#include "platform/windows/ComErrors.h"
#include "platform/windows/DispatchServer.h"
#include "platform/windows/Variants.h"
#include "platform/windows/WindowsPlatform.h"

namespace kestrelon {
namespace {

constexpr DISPID kNewAppointment = 0x60030001;
constexpr DISPID kGetVersion = 0x60030016;
constexpr DISPID kServerName = 0x68030000;
constexpr WORD kScriptCall = DISPATCH_METHOD | DISPATCH_PROPERTYGET;
constexpr DISPID kNewValue = DISPID_PROPERTYPUT;

ComPtr<IDispatch> MakeControl() {
  ComPtr<IDispatch> control;
  Check(MakeComObject<ClassFactory>()->CreateInstance(nullptr, IID_PPV_ARGS(&control)));
  return control;
}

template <typename T>
VARIANT Plain(VARTYPE type, T content) {
  VARIANT variant{};
  variant.vt = type;
  std::memcpy(&variant.bVal, &content, sizeof content);
  return variant;
}
VARIANT Number(int number) { return Plain(VT_I4, number); }
VARIANT ByReference(VARIANT& variable) { return Plain(VT_VARIANT | VT_BYREF, &variable); }
const VARIANT kEmpty{};
const VARIANT kNull = Plain(VT_NULL, 0);
const VARIANT kSkipped = Plain(VT_ERROR, DISP_E_PARAMNOTFOUND);

// What a variant holds, as "type:text".
std::string Described(const VARIANT& variant) {
  Variant text;
  const bool is_object = variant.vt == VT_DISPATCH || (variant.vt & VT_ARRAY) != 0;
  if (!is_object)
    VariantChangeType(&text, const_cast<VARIANT*>(&variant), VARIANT_ALPHABOOL, VT_BSTR);
  const std::string content = text.vt == VT_BSTR ? ToUtf8(ValueOf(text).AsString()) : "";
  return std::to_string(variant.vt) + ":" + content;
}

// One call, with the arguments in the order of rgvarg.
struct Outcome {
  HRESULT status;
  std::string result;
  int32_t number = 0;  // of EXCEPINFO
  String description;
  String source;
  UINT failed_argument = 99;
};

template <typename Call>
Outcome Perform(std::vector<VARIANT> arguments, std::vector<DISPID> names, const Call& call) {
  DISPPARAMS parameters{arguments.data(), names.data(), static_cast<UINT>(arguments.size()),
                        static_cast<UINT>(names.size())};
  Variant result;
  EXCEPINFO exception{};
  Outcome outcome{};
  outcome.failed_argument = 99;
  outcome.status = call(parameters, &result, &exception, &outcome.failed_argument);
  outcome.result = Described(result);
  outcome.number = exception.scode;
  const Bstr source(exception.bstrSource);
  outcome.source = source.text();
  outcome.description = Bstr(exception.bstrDescription).text();
  return outcome;
}

Outcome Invoke(IDispatch& control, DISPID id, WORD flags, std::vector<VARIANT> arguments = {},
               std::vector<DISPID> names = {}) {
  return Perform(arguments, names, [&](DISPPARAMS& parameters, auto... rest) {
    return control.Invoke(id, IID_NULL, 0x0409, flags, &parameters, rest...);
  });
}

// An object that answers for its default member, and for every other with itself; notes what is
// put.
class Recorder final : public DispatchObject, public std::enable_shared_from_this<Recorder> {
 public:
  explicit Recorder(Value default_value) : default_value_(std::move(default_value)) {}
  Value Invoke(InvokeKind kind, StringView member, const Arguments& arguments) override {
    if (kind == InvokeKind::kPut) puts[String(member)] = arguments.positional.back();
    if (!member.empty()) return DispatchPointer(shared_from_this());
    if (default_value_.IsNull()) throw AutomationError(kMemberNotFound);
    return default_value_.IsOmitted() ? DispatchPointer(shared_from_this()) : default_value_;
  }
  String TypeName() const override { return u"Recorder"; }

  std::map<String, Value> puts;

 private:
  Value default_value_;
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
      return CallMember(control, member, 0x0409, parameters, rest...);
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
  static Variant ObjectWithDefault(Value value) {
    return Variant(Value(DispatchPointer(std::make_shared<Recorder>(std::move(value)))));
  }

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
  DECIMAL decimal{};
  decimal.Lo64 = 7;
  BSTR no_text = nullptr;
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
      {"no text", Plain(VT_BSTR, no_text), "8:", kMismatch, kMismatch, "8:"},
      {"integer", Number(-1), "8:-1", "11:True", "2:-1", "3:-1"},
      {"byte", Plain(VT_UI1, uint8_t{200}), "8:200", "11:True", "2:200", "3:200"},
      {"wide", Number(70000), "8:70000", "11:True", kOverflowing, "3:70000"},
      {"wider", Plain(VT_I8, int64_t{1} << 40), "8:1099511627776", "11:True", kOverflowing,
       "5:1099511627776"},
      {"fraction", Plain(VT_R8, 2.5), "8:2.5", "11:True", "2:2", "5:2.5"},
      {"single", Plain(VT_R4, 3.5f), "8:3.5", "11:True", "2:4", "5:3.5"},
      {"money", Plain(VT_CY, int64_t{15000}), "8:1.5", "11:True", "2:2", "5:1.5"},
      {"date", Plain(VT_DATE, 2.0), "8:1/1/1900", "11:True", "2:2", "7:1/1/1900"},
      {"true", Plain(VT_BOOL, VARIANT_TRUE), "8:True", "11:True", "2:-1", "11:True"},
      {"empty", kEmpty, "8:", "11:False", "2:0", "0:"},
      {"null", kNull, kMismatch, kMismatch, kMismatch, "1:"},
      {"error", Plain(VT_ERROR, E_FAIL), kMismatch, kMismatch, kMismatch, kMismatch},
      {"array", array, kMismatch, kMismatch, kMismatch, "8204:"},
      {"array variable", to_array, kMismatch, kMismatch, kMismatch, "8204:"},
      {"nothing", Plain(VT_DISPATCH, nullptr), kMismatch, kMismatch, kMismatch, "9:"},
      {"variable", reference, "8:12", "11:True", "2:12", "8:12"},
      {"reference twice", ByReference(reference), "8:12", "11:True", "2:12", "8:12"},
      {"double by reference", Plain(VT_R8 | VT_BYREF, &fraction), "8:2.5", "11:True", "2:2",
       "5:2.5"},
      {"true by reference", Plain(VT_BOOL | VT_BYREF, &yes), "8:True", "11:True", "2:-1",
       "11:True"},
      {"text by reference", Plain(VT_BSTR | VT_BYREF, &twelve.bstrVal), "8:12", "11:True", "2:12",
       "8:12"},
      {"decimal by reference", Plain(VT_DECIMAL | VT_BYREF, &decimal), "8:7", "11:True", "2:7",
       "5:7"},
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
  VARIANT endless{};
  endless = ByReference(endless);
  EXPECT_EQ(Arrives<Value>(endless), kMismatch);
}

TEST_F(CallingMembers, TakesObjectsAndAsksThemForTheirDefaultMember) {
  const Variant object = ObjectWithDefault(u"12");
  EXPECT_EQ(Arrives<Object>(object), "9:");
  EXPECT_EQ(Arrives<Object>(Plain(VT_UNKNOWN | VT_BYREF, &object.punkVal)), "9:");
  EXPECT_EQ(Arrives<Value>(object), "9:");
  EXPECT_EQ(Arrives<String>(object), "8:12");
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
    UINT failed_argument = 99;
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
}

TEST_F(CallingMembers, UsesTheTablesDefaults) {
  const Variant account(u"7");
  const Variant server(u"crm");
  const Variant folder(u"app");
  for (const bool is_secure : {false, true}) {
    std::vector<VARIANT> arguments = {folder, server, account};
    if (is_secure) arguments.insert(arguments.begin(), Plain(VT_BOOL, VARIANT_TRUE));
    const Outcome outcome = Perform(arguments, {}, [&](DISPPARAMS& parameters, auto... rest) {
      return InvokeMember(control, kNewAppointment, 0x0409, kScriptCall, parameters, rest...);
    });
    EXPECT_EQ(outcome.status, S_OK);
    const String link = platform.outlook->puts[u"Body"].ToText();
    EXPECT_TRUE(link.starts_with(is_secure ? u"https://crm" : u"http://crm")) << ToUtf8(link);
  }
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
  EXPECT_EQ(failed.number, static_cast<int32_t>(0x800A000D));
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

TEST(ControlDispatch, ServesInstancesOnSeveralThreads) {
  const auto work = [](bool& all_well) {
    if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return;
    {
      const ComPtr<IDispatch> control = MakeControl();
      bool well = true;
      for (int i = 0; i < 2000; ++i) {
        wchar_t text[] = L"servername";
        LPOLESTR name = text;
        DISPID id = 0;
        well &= SUCCEEDED(control->GetIDsOfNames(IID_NULL, &name, 1, 0, &id));
        Variant variable(u"http://server/");
        well &= SUCCEEDED(
            Invoke(*control.Get(), id, DISPATCH_PROPERTYPUT, {ByReference(variable)}, {kNewValue})
                .status);
        well &= Described(variable) == "8:server";
        well &= Invoke(*control.Get(), kGetVersion, kScriptCall).result.starts_with("8:");
      }
      all_well = well;
    }
    CoUninitialize();
  };
  bool first = false;
  bool second = false;
  std::thread other(work, std::ref(first));
  std::thread(work, std::ref(second)).join();
  other.join();
  EXPECT_TRUE(first && second);
}

}  // namespace
}  // namespace kestrelon
