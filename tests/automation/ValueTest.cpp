#include <gtest/gtest.h>

#include <clocale>
#include <cmath>

#include "automation/DispatchObject.h"
#include "automation/Value.h"
#include "tests/support/Failures.h"

namespace kestrelon {
namespace {

TEST(Text, KeepsEveryCharacterOverUtf8AndReplacesWhatIsMalformed) {
  const String text = u"a\u00A3\u20AC\U0001F600";
  EXPECT_EQ(FromUtf8(ToUtf8(text)), text);
  EXPECT_EQ(FromUtf8("\xC3(\xE2\x82"), u"\uFFFD(\uFFFD\uFFFD");
  EXPECT_EQ(FromUtf8("\xED\xA0\x80"), u"\uFFFD\uFFFD\uFFFD");
  EXPECT_EQ(ToUtf8(String(1, char16_t{0xD800})), "\xEF\xBF\xBD");
  EXPECT_EQ(ToAnsi(u"\u00A3\u20AC\u4E2D\U0001F600"), "\xA3\x80??");
  EXPECT_EQ(FromAnsi("\xA3\x80\x81"), u"\u00A3\u20AC\u0081");
}

TEST(Text, FoldsLettersBeyondAscii) {
  EXPECT_EQ(LowerCase(StringView(u"ÀÖØÞ×ŁŽŸΑΩЖЁ")), u"àöøþ×łžÿαωжё");
  EXPECT_EQ(UpperCase(StringView(u"àöøþ÷łžÿαωжё")), u"ÀÖØÞ÷ŁŽŸΑΩЖЁ");
}

TEST(Text, CutsAndSplitsAsTheRunTimeDoes) {
  EXPECT_EQ(Split(u"a@b@", u"@"), (std::vector<String>{u"a", u"b", u""}));
  EXPECT_TRUE(Split(u"", u"@").empty());
  EXPECT_EQ(Trim(u"  a\t "), u"a\t");
  EXPECT_EQ(Right(u"abc", 5), u"abc");
  EXPECT_EQ(NumberOf([] { Left(u"abc", -1); }), kInvalidProcedureCall);
  EXPECT_EQ(ReplaceAll(u"aaa", u"aa", u"a"), u"aa");
}

TEST(Value, ConvertsAsTheRunTimeDoes) {
  EXPECT_EQ(Value(true).ToText(), u"True");
  EXPECT_EQ(Value(0.1).ToText(), u"0.1");
  EXPECT_EQ(Value(u" 12 ").ToLong(), 12);
  EXPECT_EQ(Value(2.5).ToInteger(), 2);
  EXPECT_EQ(Value(true).ToLong(), -1);
  EXPECT_EQ(NumberOf([] { Value(70000).ToInteger(); }), kOverflow);
  EXPECT_EQ(NumberOf([] { Value(Value::Null{}).ToText(); }), kInvalidUseOfNull);
  EXPECT_EQ(NumberOf([] { Value(u"abc").ToLong(); }), kTypeMismatch);
  EXPECT_EQ(NumberOf([] { Value(1).ToObject(); }), kObjectRequired);
  EXPECT_EQ(NumberOf([] { Object().Get(u"x"); }), kObjectVariableNotSet);
}

// A program that hosts the control shares its C library, and may have set that to its user's
// language.
TEST(Value, WritesAndReadsNumbersInEveryLanguage) {
  const std::string before = setlocale(LC_ALL, nullptr);
  // Where none of them is installed, there is nothing to disturb either.
  for (const char* language : {"German", "de_DE.UTF-8", "de_DE"}) setlocale(LC_ALL, language);
  const struct {
    const char16_t* text;
    double number;
    const char16_t* written;
  } cases[] = {{u" 2.5 ", 2.5, u"2.5"},
               {u"+.5", 0.5, u"0.5"},
               {u"-5.", -5, u"-5"},
               {u"1e20", 1e20, u"1E+20"},
               {u"0.1234567890123456", 0.1234567890123456, u"0.123456789012346"},
               {u"-1e999", -HUGE_VAL, u"-INF"},
               {u"1e-999", 0, u"0"}};
  for (const auto& [text, number, written] : cases) {
    EXPECT_EQ(Value(text).ToDouble(), number) << ToUtf8(text);
    EXPECT_EQ(ToUtf8(Value(number).ToText()), ToUtf8(written));
  }
  for (const StringView text : {u"", u"+-5", u"++5", u"1e", u"2,5", u"inf", u"0x5", u"."}) {
    EXPECT_EQ(NumberOf([&] { Value(text).ToDouble(); }), kTypeMismatch) << ToUtf8(text);
  }
  setlocale(LC_ALL, before.c_str());
}

TEST(Value, ComparesLoosely) {
  EXPECT_FALSE(LooselyEqual(Value(Value::Null{}), Value(Value::Null{})));
  EXPECT_TRUE(LooselyEqual(Value(), Value(u"")));
  EXPECT_TRUE(LooselyEqual(Value(u"1.0"), Value(1)));
  EXPECT_FALSE(LooselyEqual(Value(u"A"), Value(u"a")));
}

TEST(Date, TakesApartWhatItPutTogether) {
  for (const DateParts parts : {DateParts{1899, 12, 30, 0, 0, 1}, DateParts{1899, 12, 29, 6, 0, 0},
                                DateParts{2024, 2, 29, 23, 59, 59}, DateParts{4501, 1, 1, 0, 0, 0},
                                DateParts{100, 1, 1, 12, 0, 0}, DateParts{9999, 12, 31, 1, 2, 3}}) {
    const DateParts again = TakeApart(MakeDate(parts));
    EXPECT_EQ(again.year, parts.year);
    EXPECT_EQ(again.month, parts.month);
    EXPECT_EQ(again.day, parts.day);
    EXPECT_EQ(again.hour * 3600 + again.minute * 60 + again.second,
              parts.hour * 3600 + parts.minute * 60 + parts.second);
  }
  EXPECT_EQ(MakeDate({2000, 1, 1, 0, 0, 0}).days, 36526);
  EXPECT_EQ(FormatDate(ParseDate(u"2026-11-21T08:05:09")), u"2026-11-21 08:05:09");
  EXPECT_EQ(NumberOf([] { ParseDate(u"2026-02-30"); }), kTypeMismatch);
}

// Its default member gives what it was made with, or itself.
class Standing final : public DispatchObject, public std::enable_shared_from_this<Standing> {
 public:
  explicit Standing(std::optional<Value> value) : value_(std::move(value)) {}
  Value Invoke(InvokeKind, StringView, const Arguments&) override {
    return value_ ? *value_ : DispatchPointer(shared_from_this());
  }
  String TypeName() const override { return u"Standing"; }

 private:
  const std::optional<Value> value_;
};

TEST(Value, FollowsDefaultMembersToAnEnd) {
  const auto standing_for = [](std::optional<Value> value) {
    return Value(DispatchPointer(std::make_shared<Standing>(std::move(value))));
  };
  const Value twice = standing_for(standing_for(u"12"));
  EXPECT_EQ(twice.ToText(), u"12");
  EXPECT_EQ(twice.ToLong(), 12);
  EXPECT_TRUE(LooselyEqual(twice, 12));
  const Value endless = standing_for(std::nullopt);
  EXPECT_EQ(NumberOf([&] { endless.ToText(); }), kTypeMismatch);
  EXPECT_EQ(NumberOf([&] { endless.ToBoolean(); }), kTypeMismatch);
  EXPECT_EQ(NumberOf([&] { LooselyEqual(1, endless); }), kTypeMismatch);
}

}  // namespace
}  // namespace kestrelon
