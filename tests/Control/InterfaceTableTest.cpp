#include <gtest/gtest.h>

#include <set>

#include "Control/InterfaceTable.h"
#include "Control/KestrelonControl.h"
#include "tests/support/Failures.h"
#include "tests/support/ScriptedDesktop.h"

namespace kestrelon {
namespace {

TEST(InterfaceTable, FindsEachMemberWithoutRegardToCase) {
  std::set<uint32_t> dispids;
  for (const Member& member : InterfaceTable()) {
    EXPECT_EQ(FindMember(LowerCase(member.name)), &member);
    EXPECT_TRUE(dispids.insert(member.dispid).second) << ToUtf8(member.name);
  }
  EXPECT_EQ(FindMember(u"NoSuchMember"), nullptr);
}

TEST(InterfaceTable, RefusesADescriptionThatDoesNotFitItsFunction) {
  String (*function)(ControlContext&, String&) = [](ControlContext&, String& text) { return text; };
  EXPECT_THROW(Describe(u"One", 1, function, {}), std::logic_error);
  EXPECT_THROW(Describe(u"One", 1, function, {Required(u"a"), Required(u"b")}), std::logic_error);
}

// A member that shows what it was given.
String Record(ControlContext&, String& text, bool& flag, int16_t& number, Value& variant) {
  const String seen = text + (flag ? u"+" : u"-") + Value(int32_t{number}).ToText();
  text = u"written";
  flag = !flag;
  if (variant.IsNull()) throw AutomationError(kInvalidUseOfNull);
  variant = 7;
  return seen;
}

class Calling : public ::testing::Test {
 protected:
  int32_t Fails(std::vector<Value> values) {
    const int32_t number = NumberOf([&] { control.Invoke(member, values); });
    after = values;
    return number;
  }

  testing::ScriptedDesktop desktop;
  KestrelonControl control{desktop};
  const Member member = Describe(u"Record", 1, &Record,
                                 {Required(u"text"), Optional(u"flag", true), Optional(u"number"),
                                  Optional(u"variant", Value())});
  const Value omitted{Value::Omitted{}};
  std::vector<Value> after;
};

TEST_F(Calling, ConvertsFillsDefaultsAndWritesBack) {
  std::vector<Value> values = {12, omitted, omitted, omitted};
  EXPECT_EQ(control.Invoke(member, values).ToText(), u"12+0");
  EXPECT_EQ(values[0].AsString(), u"written");
  EXPECT_FALSE(values[1].AsBoolean());
  EXPECT_EQ(values[3].AsInteger(), 7);
}

TEST_F(Calling, RefusesWhatDoesNotConvertBeforeTheMemberRuns) {
  EXPECT_EQ(Fails({omitted, true, 1, 1}), kArgumentNotOptional);
  EXPECT_EQ(Fails({u"a", true, 70000, 1}), kOverflow);
  EXPECT_EQ(Fails({Value::Null{}, true, 1, 1}), kInvalidUseOfNull);
  EXPECT_EQ(Fails({u"a"}), kWrongNumberOfArguments);
}

TEST_F(Calling, KeepsWhatAFailingMemberHadWritten) {
  EXPECT_EQ(Fails({u"a", true, 1, Value::Null{}}), kInvalidUseOfNull);
  EXPECT_EQ(after[0].AsString(), u"written");
}

}  // namespace
}  // namespace kestrelon
