// Every member, with each of its automation calls failing in turn: nothing escapes to the page but
// what the interface says, and what was there before is still there.

#include <gtest/gtest.h>

#include <functional>
#include <set>

#include "Control/KestrelonControl.h"
#include "desktop/storage/AtomicFile.h"
#include "tests/FailEverywhereOutlook.h"
#include "tests/support/Documents.h"
#include "tests/support/FailingDesktop.h"
#include "tests/support/LetterWorld.h"

namespace kestrelon {
namespace {

using testing::FailingDesktop;
using testing::FailurePlan;
using testing::LetterWorld;

struct MemberCase {
  const char16_t* member;
  // At least so many calls of the member can fail.
  int least_calls;
  // The arguments of one call; documents are made to fail by the plan too.
  std::function<std::vector<Value>(const LetterWorld&, FailurePlan&)> arguments;
};

Value Document(const std::string& xml, FailurePlan& plan) {
  return testing::FailByPlan(testing::XmlDocumentOf(xml), plan);
}

std::vector<Value> SavedLetter(const LetterWorld& world, const Value& xml, const String& path) {
  return {xml, path, u"", u"HTML", FromUtf8(world.saved_path.string()), u"true"};
}

auto Fixed(std::vector<Value> values) {
  return [values](const LetterWorld&, FailurePlan&) { return values; };
}

// The members that reach an automation server; those of Outlook are in a table of their own.
const MemberCase kCases[] = {
    {u"CreateExcelApp", 1, Fixed({})},
    {u"CheckForOutlook", 1, Fixed({})},
    {u"CheckForWord", 1, Fixed({})},
    {u"CreateLetterXML", 100,
     [](const LetterWorld& world, FailurePlan& plan) {
       std::vector<Value> values =
           SavedLetter(world, Document(world.letter_xml, plan), world.letter_template);
       values.emplace_back(u"");
       return values;
     }},
    {u"CreateSeminarLetterXML", 100,
     [](const LetterWorld& world, FailurePlan& plan) {
       return SavedLetter(world, Document(world.seminar_xml, plan), world.seminar_template);
     }},
    {u"WordQuote", 100,
     [](const LetterWorld& world, FailurePlan& plan) {
       const Value quote = Document(
           "<Data><quotefields><quotefield name='When'/></quotefields><quoterows><r when='1'/><r/>"
           "</quoterows><field name='n' templatetag='fee'/><Data><r/></Data></Data>",
           plan);
       return std::vector<Value>{quote, world.seminar_template, FromUtf8(world.saved_path.string()),
                                 u"true", u"true"};
     }},
};
// Those that reach none.
const std::set<StringView> kSelfContained = {
    u"ServerName",     u"GetVersion",    u"CleanUpOutlook",     u"dateFormatOrder",
    u"currencyFormat", u"CreateMessage", u"CreateContactLetter"};
// Those whose calls fail in turn in the tests of their subjects.
const std::set<StringView> kWithTheirSubject = {
    u"GetTemplateList", u"FindFile",         u"CreateHTMforPDF", u"OpenFile",
    u"UploadFile",      u"WordQuoteHtml",    u"ExcelQuote",      u"MakeCall",
    u"HangupCall",      u"GetDialerVersion", u"GetTapiDrivers"};

TEST(FailEverywhereCases, CoverEveryMember) {
  std::set<StringView> covered = testing::OutlookMembers();
  covered.insert(kSelfContained.begin(), kSelfContained.end());
  covered.insert(kWithTheirSubject.begin(), kWithTheirSubject.end());
  for (const MemberCase& example : kCases) covered.insert(example.member);
  for (const Member& member : InterfaceTable()) {
    EXPECT_EQ(covered.count(member.name), 1U) << ToUtf8(member.name);
  }
}

class FailEverywhere : public ::testing::TestWithParam<MemberCase> {};

TEST_P(FailEverywhere, NothingEscapesAndNothingIsHalfWritten) {
  const Member& member = *FindMember(GetParam().member);
  LetterWorld world;
  const std::string previous = "what was saved before";
  int failures = 0;
  int silent = 0;
  for (int n = 1;; ++n) {
    FailurePlan plan{n};
    FailingDesktop desktop(world.platform, plan);
    KestrelonControl control(desktop);
    desktop::WriteFileAtomically(world.saved_path, previous);
    std::vector<Value> values = GetParam().arguments(world, plan);
    world.messages.clear();
    EXPECT_NO_THROW(control.Invoke(member, values)) << "call " << n;
    const bool is_letter = member.result == ParameterType::kNone;
    silent += is_letter && plan.reached() && world.messages.empty() ? 1 : 0;
    EXPECT_TRUE(plan.reached() || world.messages.empty()) << "call " << n;
    // The file is the old one or a whole new one, and nothing else lies there.
    const std::string now = desktop::ReadWholeFile(world.saved_path);
    EXPECT_TRUE(now == previous || testing::IsWholePackage(now)) << "call " << n;
    EXPECT_EQ(world.FilesInOutput(), 1) << "call " << n;
    if (!plan.reached()) break;
    ++failures;
    ASSERT_LT(n, 5000) << "does not end";
  }
  EXPECT_GE(failures, GetParam().least_calls);
  // A letter tells of every failure but those of looking for text boxes in headers.
  EXPECT_LE(silent, failures / 4);
}

INSTANTIATE_TEST_SUITE_P(Members, FailEverywhere, ::testing::ValuesIn(kCases),
                         [](const auto& info) { return ToUtf8(info.param.member); });

}  // namespace
}  // namespace kestrelon
