#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desktop/tapi/DialRequest.h"
#include "desktop/tapi/Dialer.h"
#include "desktop/tapi/Tapi.h"
#include "tests/desktop/opener/RecordingOpener.h"
#include "tests/support/Failures.h"

namespace kestrelon::desktop {
namespace {

using ::testing::HasSubstr;

class Telephony : public ::testing::Test {
 protected:
  void Configure(const std::string& text) { files_.Write("config.json", text); }

 private:
  const ConverterWorld files_;
  const ChangedEnvironment variable_{"KESTRELON_CONFIG", (files_ / "config.json").string()};

 protected:
  const RecordingOpener opener{"$1|$2"};
};

TEST_F(Telephony, LinesAreThoseOfTheFile) {
  const Object tapi = CreateTapi();
  tapi.Call(u"Initialize");
  EXPECT_EQ(tapi.GetChild(u"Addresses").Get(u"Count").ToLong(), 0) << "there is no file";
  Configure(R"({"lines": ["Desk", "Zoë \"2\""]})");
  tapi.Call(u"Initialize");
  const Object addresses = tapi.GetChild(u"Addresses");
  EXPECT_EQ(tapi.GetChild(u"Addresses", 2).Get(u"AddressName").ToText(), u"Zoë \"2\"");
  EXPECT_EQ(addresses.Enumerate()->Next()->ToObject().Get(u"AddressName").ToText(), u"Desk");
  EXPECT_EQ(NumberOf([&] { addresses.Call(u"Item", 3); }), kSubscriptOutOfRange);
}

TEST_F(Telephony, BrokenFilesAreToldWithLineReasonAndRemedy) {
  for (const auto& [text, told] : {
           std::pair{"{\n\"lines\": [\n\"a\",\n]}", "line 4: this is no JSON: syntax error"},
           {"\n[]", "line 2: a list cannot stand in the file. The file holds \"lines\""},
           {"{\"lines\": [\n5\n]}", "line 2: a number cannot stand in \"lines\""},
           {R"({"dialers": {"A": {"call": ["p"], "hang-up": []}}})", "\"hang-up\" is not known"},
           {"{\"dialers\": {\"A\": {\n}}}", "line 2: the dialer \"A\" has no program"},
           {R"({"dialers": {"A": {"call": ["p", "{nummer}"]}}})", "\"{nummer}\" is not known"},
           {R"({"dialers": {"A": {"call": ["p"]}, "a": {}}})", "the dialer \"a\" is there twice"},
           {R"({"dialers": {"A": {"call": ["p\u0000q"]}}})", "a NUL character cannot stand in"},
       }) {
    Configure(text);
    const auto error = FailureOf([] { CreateConfiguredDialer(u"A"); });
    EXPECT_THAT(error.what(), ::testing::AllOf(HasSubstr("/config.json, line "), HasSubstr(told)))
        << text;
  }
  const ChangedEnvironment endless("KESTRELON_CONFIG", "/dev/zero");
  EXPECT_THAT(FailureOf([] { CreateConfiguredDialer(u"A"); }).what(), HasSubstr("than 1 MiB"));
  const ChangedEnvironment folder("KESTRELON_CONFIG", "/");
  EXPECT_THAT(FailureOf([] { CreateConfiguredDialer(u"A"); }).what(), HasSubstr("cannot be read"));
}

TEST_F(Telephony, AnUnknownDialerIsToldWithTheFileThatWouldNameIt) {
  const auto error = FailureOf([] { CreateConfiguredDialer(u"Nobody"); });
  EXPECT_EQ(error.number(), kCannotCreateObject);
  EXPECT_THAT(error.what(),
              ::testing::AllOf(HasSubstr("\"Nobody\""), HasSubstr("/config.json has")));
}

TEST_F(Telephony, ConfiguredDialersRunTheirPrograms) {
  Configure(R"({"dialers": {"Acme.Dialer": {"call": [")" + opener.program().string() +
            R"(", "{number}{}", "-p{number}={parameters};"],
                "hangup": ["/nonexistent/program"], "version": "2.1"}}})");
  const Object dialer = CreateConfiguredDialer(u"acme.dialer");
  dialer.Call(u"MakeCall", u"NUMBER= {parameters}=$(x)' ;a");
  EXPECT_EQ(opener.Next(),
            "{parameters}=$(x)'{}|-p{parameters}=$(x)'=NUMBER= {parameters}=$(x)' ;a;");
  EXPECT_EQ(dialer.Call(u"GetVersion").ToText(), u"2.1");
  const auto call = [&](StringView with) {
    return FailureOf([&] { dialer.Call(u"MakeCall", with); });
  };
  EXPECT_THAT(call(u"number=--evil").what(), HasSubstr("as an option"));
  EXPECT_THAT(call(StringView(u"number=1\0", 9)).what(), HasSubstr("NUL"));
  EXPECT_THAT(FailureOf([&] { dialer.Call(u"HangupCall"); }).what(), HasSubstr("/program\" of"));
}

TEST_F(Telephony, TheBuiltInDialerOpensALinkWithTheNumbersDigits) {
  const Object dialer = CreateLinkDialer();
  const auto call = [&](const String& number) {
    return FailureOf([&] { dialer.Call(u"MakeCall", u"x;Number=" + number + u";number=2"); });
  };
  for (const auto& [number, link] : {std::pair{u" +44 (0)20-7946.0000 ", "tel:+442079460000|"},
                                     {u"(020)\u00A07946/0000", "tel:02079460000|"}}) {
    EXPECT_EQ(call(number).number(), 0);
    EXPECT_EQ(opener.Next(), link);
  }
  for (const auto& number : {u"+ ()", u"44+1", u"020=1", u"*#06#", u"Ann", u"\uFF11\u0661"}) {
    EXPECT_THAT(call(number).what(), HasSubstr("is no telephone number"));
  }
  EXPECT_THAT(call(u"").what(), HasSubstr("no number to call"));
  const ChangedEnvironment path("PATH", "/nonexistent");
  for (const auto& [program, told] : {std::pair{"", "Install one"}, {"/nonexistent/p", "Check"}}) {
    const ChangedEnvironment other("KESTRELON_OPENER", program);
    EXPECT_THAT(call(u"1").what(), HasSubstr(told));
  }
}

}  // namespace
}  // namespace kestrelon::desktop
