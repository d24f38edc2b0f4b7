#include <gtest/gtest.h>

#include "telephony/Dialer.h"
#include "tests/support/FailEachCall.h"

namespace kestrelon {
namespace {

using testing::ScriptedDesktop;

const String kFailure = u"An error occured whilst ";

class Dialer : public ::testing::Test {
 protected:
  void Make(Value parameters) { EXPECT_TRUE(MakeCall(context, parameters).IsEmpty()); }

  ScriptedDesktop desktop;
  ControlContext context{desktop};
};

TEST_F(Dialer, IsNotCreatedWithoutItsParameters) {
  const String few = u"An insufficient number of parameters were passed!";
  const String missing = u"Object parameter was missing!";
  const String no_value = kFailure + u"getting parameters: Subscript out of range";
  for (const auto& [parameters, text] :
       {std::pair<Value, String>{u"object=A.B", few},
        {u";", missing},
        {u"number=1; object=A.B", missing},  // the blank is the key's
        {u"object;number=1;", no_value},
        {u"object=A.B;Number", no_value},
        {Value::Null{}, kFailure + u"splitting parameters: Invalid use of Null"},
        {Value::Array{u"a;b"}, kFailure + u"splitting parameters: Type mismatch"}}) {
    Make(parameters);
    EXPECT_EQ(desktop.messages.back().text, text);
    EXPECT_EQ(desktop.messages.back().title.has_value(), text.starts_with(kFailure));
  }
  EXPECT_EQ(desktop.messages.size(), 7U);
  EXPECT_TRUE(desktop.log.empty());
}

TEST_F(Dialer, GetsTheWholeTextAndHangsUpWhateverBecameOfTheCall) {
  HangupCall(context);
  Make(u"x;NUMBER=1;Object=A=1;object=C;");
  EXPECT_EQ(desktop.log.back(), "A=1.MakeCall(\"x;NUMBER=1;Object=A=1;object=C;\")");
  desktop.Fail("create B", AutomationError(5, u"Gone"));
  Make(u"object=B;number=1");
  EXPECT_EQ(desktop.messages.back().text, kFailure + u"creating dialer object: Gone");
  HangupCall(context);
  EXPECT_EQ(desktop.log.back(), "A=1.HangupCall()");
  desktop.Fail("C.MakeCall", AutomationError(5, u"Busy"));
  Make(u"object=C;number=1");
  EXPECT_EQ(desktop.messages.back().text, kFailure + u"making call: Busy");
  HangupCall(context);
  EXPECT_EQ(desktop.log.back(), "C.HangupCall()");
}

TEST(DialerFailures, AreToldByTheCallAloneAndLeaveNoHalfResult) {
  const auto script = [](ScriptedDesktop& desktop) {
    const std::string addresses = "TAPI.TAPI.Addresses";
    desktop.Answer(addresses + ".count", {Value(int32_t{4})});
    for (const auto& [place, name] : {std::pair{"1", u""}, {"2", u"B"}, {"3", u""}, {"4", u"D"}}) {
      desktop.Answer(addresses + ".item(" + place + ").AddressName", {Value(name)});
    }
    desktop.Answer("Asked.GetVersion()", {Value(2.5)});
  };
  const auto run = [](ControlContext& context, ScriptedDesktop& desktop) {
    Value sObject = u"Asked";
    const String version = GetDialerVersion(context, sObject);
    const String lines = GetTapiDrivers(context);
    EXPECT_TRUE(desktop.messages.empty() && context.state.dialer.IsNothing());
    Value sParameters = u"object=Called;number=1";
    MakeCall(context, sParameters);
    HangupCall(context);
    const auto fails = [&](const char* part) {
      return desktop.failed_line.find(part) != std::string::npos;
    };
    EXPECT_EQ(version, fails("Asked") ? u"" : u"2.5");
    EXPECT_EQ(lines, fails("TAPI") ? u"" : u"B~~D") << "no separator before the first name";
    EXPECT_EQ(desktop.messages.empty(), !fails("Called") || fails("Hangup")) << desktop.failed_line;
  };
  EXPECT_EQ(testing::FailEachCall(script, run), 17);
}

}  // namespace
}  // namespace kestrelon
