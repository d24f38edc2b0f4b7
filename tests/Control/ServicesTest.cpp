#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Control/ErrorReporting.h"
#include "Control/LocaleAndEnvironment.h"
#include "Control/OfficeConnection.h"
#include "Control/ServerName.h"
#include "tests/support/Failures.h"
#include "tests/support/ScriptedDesktop.h"

namespace kestrelon {
namespace {

using ::testing::ElementsAre;
using testing::ScriptedDesktop;

class Services : public ::testing::Test {
 protected:
  ScriptedDesktop desktop;
  ControlContext context{desktop};
};

TEST_F(Services, ServerNameKeepsTheHostAndWritesItBack) {
  String address = u"http://server/app/page.aspx";
  ServerName(context, address);
  EXPECT_EQ(address, u"server");
  EXPECT_EQ(context.state.server_name, u"server");
  address = u"https://server/app";
  ServerName(context, address);
  EXPECT_EQ(address, u"");
  EXPECT_EQ(context.state.server_name, u"");
}

TEST_F(Services, ServerNameRaisesTypeMismatchAndKeepsWhatItHad) {
  context.state.server_name = u"old";
  for (const String& text :
       {String(u"http://host"), String(u"short"), String(u""), String(40000, u'x') + u"/"}) {
    String address = text;
    EXPECT_EQ(NumberOf([&] { ServerName(context, address); }), 13);
    EXPECT_EQ(address, text);
  }
  EXPECT_EQ(context.state.server_name, u"old");
  EXPECT_TRUE(desktop.messages.empty());
}

TEST_F(Services, CleanUpForgetsOutlookAndTheBoundFolderAndNothingElse) {
  const auto object = [&](const char* name) { return desktop.NamedObject(name).ToObject(); };
  ObjectState& state = context.state;
  state.bound_contact_folder = object("folder");
  state.outlook_application = object("outlook");
  state.user_properties = object("properties");
  state.excel_application = object("excel");
  state.shared_mailbox_recipient = object("recipient");
  CleanUpOutlook(context);
  EXPECT_TRUE(state.bound_contact_folder.IsNothing());
  EXPECT_TRUE(state.outlook_application.IsNothing());
  EXPECT_TRUE(state.user_properties.IsNothing());
  EXPECT_FALSE(state.excel_application.IsNothing());
  EXPECT_FALSE(state.shared_mailbox_recipient.IsNothing());
  EXPECT_TRUE(desktop.log.empty());
}

TEST_F(Services, ProbesAttachToOutlookButCreateWord) {
  EXPECT_EQ(CheckForOutlook(context), u"True");
  EXPECT_EQ(CheckForWord(context), u"True");
  EXPECT_TRUE(context.state.outlook_application.IsNothing());
  EXPECT_THAT(desktop.log, ElementsAre("attach Outlook.Application", "create Word.Application"));
  EXPECT_EQ(CreateExcelApp(context).pointer(), context.state.excel_application.pointer());
  EXPECT_FALSE(context.state.excel_application.IsNothing());
  desktop.Fail("", AutomationError(kCannotCreateObject));
  EXPECT_EQ(CheckForOutlook(context), u"False");
  EXPECT_EQ(CheckForWord(context), u"False");
  EXPECT_TRUE(CreateExcelApp(context).IsNothing());
}

TEST_F(Services, OutlookFailuresBecomeResultWords) {
  std::optional<AutomationError> pending = AutomationError(kCannotCreateObject);
  EXPECT_EQ(GetOutlookErrorResult(pending, u"opening a Task", 8), u"NoOutlook");
  EXPECT_TRUE(pending.has_value());
  pending = AutomationError(462);
  EXPECT_EQ(GetOutlookErrorResult(pending, u"opening a Task", 8), u"8");
  EXPECT_FALSE(pending.has_value());
}

TEST_F(Services, CreateMessageAnswersOnlyQuestions) {
  String text = u"Text";
  String title = u"Title";
  for (const auto& [flags, pressed, result] :
       {std::tuple{48, 1, 0}, {64, 1, 0}, {4, 6, 6}, {4, 7, 7}, {0, 1, 1}, {65, 2, 2}}) {
    desktop.buttons = {pressed};
    auto buttons = static_cast<int16_t>(flags);
    EXPECT_EQ(CreateMessage(context, text, buttons, title), result) << flags;
    EXPECT_EQ(desktop.messages.back(), (testing::ShownMessage{u"Text", flags, u"Title"}));
  }
}

TEST_F(Services, LocaleAnswersAsTheSystemDoes) {
  EXPECT_EQ(dateFormatOrder(context), u"1");
  desktop.order_of_date = "2";
  EXPECT_EQ(dateFormatOrder(context), u"2");
  EXPECT_EQ(currencyFormat(context), u"\u00A3");
  desktop.currency = "CHF";
  EXPECT_EQ(currencyFormat(context), u"CHF");
  desktop.locale_fails = true;
  // The buffer stays all NUL, which is an empty answer and no run-time error.
  EXPECT_EQ(dateFormatOrder(context), u"");
  EXPECT_EQ(TrimAtNull(u"abc"), u"1") << "text without NUL";
  EXPECT_THROW(currencyFormat(context), AutomationError);
}

TEST_F(Services, VersionLeavesTheThirdFieldOut) { EXPECT_EQ(GetVersion(context), u"5.8.7"); }

TEST_F(Services, TempPathOverTheLimitIsBlank) {
  EXPECT_EQ(GetTheTempPath(context), u"/tmp/");
  desktop.temp_path = std::string(300, 'x') + "/";
  EXPECT_EQ(GetTheTempPath(context), String(255, u' '));
}

}  // namespace
}  // namespace kestrelon
