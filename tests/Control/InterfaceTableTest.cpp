#include <gtest/gtest.h>

#include <set>

#include "Control/InterfaceTable.h"
#include "Control/KestrelonControl.h"
#include "tests/support/ScriptedDesktop.h"

namespace kestrelon {
namespace {

struct Expected {
  StringView name;
  uint32_t dispid;
  size_t parameters;
  size_t optional;
};

// What every page that was ever compiled against the control relies on.
constexpr Expected kInterface[] = {
    {u"ServerName", 0x68030000, 1, 0},
    {u"NewAppointment", 0x60030001, 4, 1},
    {u"AddAppointment", 0x60030002, 1, 0},
    {u"OpenTask", 0x60030003, 1, 0},
    {u"OpenAppointment", 0x60030004, 1, 0},
    {u"GenerateEmail", 0x60030006, 5, 0},
    {u"GetOutlookSelection", 0x60030007, 0, 0},
    {u"GetOutlookSelectionString", 0x60030008, 0, 0},
    {u"CreateSeminarLetterXML", 0x60030009, 6, 4},
    {u"CreateLetterXML", 0x6003000A, 7, 5},
    {u"CreateContactLetter", 0x6003000D, 2, 0},
    {u"GetTemplateList", 0x6003000E, 2, 0},
    {u"FindFile", 0x6003000F, 1, 0},
    {u"CreateHTMforPDF", 0x60030010, 6, 0},
    {u"GetVersion", 0x60030016, 0, 0},
    {u"SetContactFolder", 0x60030017, 1, 0},
    {u"AddContact", 0x60030018, 17, 13},
    {u"AddContactAll", 0x60030019, 1, 0},
    {u"AddUpdateContactXML", 0x6003001A, 3, 0},
    {u"CleanUpOutlook", 0x6003001D, 0, 0},
    {u"CreateExcelApp", 0x6003001E, 0, 0},
    {u"OpenFile", 0x6003001F, 2, 1},
    {u"GetContactFolderList", 0x60030020, 1, 1},
    {u"GetTaskFolderList", 0x60030021, 0, 0},
    {u"GetFolderContactItems", 0x60030022, 1, 0},
    {u"GetFolderTaskItems", 0x60030023, 1, 0},
    {u"ImportContact", 0x60030024, 2, 0},
    {u"ImportTask", 0x60030025, 2, 0},
    {u"dateFormatOrder", 0x60030026, 0, 0},
    {u"currencyFormat", 0x60030027, 0, 0},
    {u"UploadFile", 0x60030029, 2, 0},
    {u"CheckForFolder", 0x6003002B, 1, 0},
    {u"SendEmail", 0x6003002C, 1, 0},
    {u"SendEmailWithOriginal", 0x6003002D, 6, 0},
    {u"SendEmailFull", 0x6003002E, 6, 0},
    {u"ForwardEmailWithOriginal", 0x6003002F, 6, 0},
    {u"WordQuote", 0x60030030, 5, 0},
    {u"WordQuoteHtml", 0x60030031, 11, 0},
    {u"CreateMessage", 0x60030035, 3, 0},
    {u"RemoveContact", 0x60030036, 2, 0},
    {u"SetImportID", 0x60030037, 3, 0},
    {u"CheckIfSynchronised", 0x60030038, 2, 0},
    {u"ExcelQuote", 0x6003003B, 2, 0},
    {u"CreateContactAsvCard", 0x6003003C, 1, 0},
    {u"CheckForOutlook", 0x6003003D, 0, 0},
    {u"CheckForWord", 0x6003003E, 0, 0},
    {u"MakeCall", 0x60030045, 1, 0},
    {u"HangupCall", 0x60030046, 0, 0},
    {u"GetDialerVersion", 0x60030047, 1, 0},
    {u"GetTapiDrivers", 0x60030052, 0, 0},
    {u"GetUnsyncedAppts", 0x6003005A, 0, 0},
    {u"GetUnsyncedTasks", 0x6003005B, 0, 0},
    {u"GetUnsyncedContacts", 0x6003005C, 1, 0},
    {u"SetItemAsKestrelon", 0x6003005E, 5, 0},
};

TEST(InterfaceTable, HoldsWhatPagesRelyOn) {
  const auto table = InterfaceTable();
  ASSERT_EQ(table.size(), std::size(kInterface));
  for (size_t i = 0; i < table.size(); ++i) {
    EXPECT_EQ(table[i].name, kInterface[i].name);
    EXPECT_EQ(table[i].dispid, kInterface[i].dispid);
    EXPECT_EQ(table[i].parameters.size(), kInterface[i].parameters) << ToUtf8(table[i].name);
    size_t optional = 0;
    for (const Parameter& parameter : table[i].parameters) {
      optional += parameter.optional ? 1 : 0;
      EXPECT_NE(parameter.type, ParameterType::kNone);
    }
    EXPECT_EQ(optional, kInterface[i].optional) << ToUtf8(table[i].name);
    EXPECT_EQ(FindMember(LowerCase(table[i].name)), &table[i]);
  }
  EXPECT_EQ(FindMember(u"NoSuchMember"), nullptr);
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
    try {
      control.Invoke(member, values);
    } catch (const AutomationError& error) {
      after = values;
      return error.number();
    }
    return 0;
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
