// Scripts against the registered control, as pages and users run them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "Control/InterfaceTable.h"
#include "platform/windows/DispatchServer.h"
#include "tests/frontends/activex/StandInHost.h"
#include "tests/frontends/activex/StandIns.h"

namespace kestrelon::testing {
namespace {

// Where the script runs: in this program like the desktop, or in the system's host of scripts.
enum class Place { kHere, kCscript };

using Way = std::tuple<Language, Place>;

std::string NameOf(const ::testing::TestParamInfo<Way>& way) {
  return std::string(std::get<Language>(way.param) == Language::kJScript ? "JScript" : "VBScript") +
         (std::get<Place>(way.param) == Place::kHere ? "Here" : "InCscript");
}

// What every script has: make(ProgID), and the objects that it is about.
String PreludeOf(const Way& way) {
  const bool is_cscript = std::get<Place>(way) == Place::kCscript;
  if (std::get<Language>(way) == Language::kJScript) {
    return String(
               u"function make(name) { return new ActiveXObject(name); }\n"
               u"var Empty, Nothing = null;\n") +
           (is_cscript ? u"var host = make('KestrelonTest.Host');\n" : u"") +
           u"var control = make('KNControl2005.KestrelonCtrl2005');\n"
           u"var xml = make('Msxml2.DOMDocument');\n";
  }
  // The system's host has no services to offer, which CreateObject of VBScript asks for.
  return String(u"Function make(name)\nSet make = ") + (is_cscript ? u"WScript." : u"") +
         u"CreateObject(name)\nEnd Function\n" +
         (is_cscript ? u"Set host = make(\"KestrelonTest.Host\")\n" : u"") +
         u"Set control = make(\"KNControl2005.KestrelonCtrl2005\")\n"
         u"Set xml = make(\"Msxml2.DOMDocument\")\n";
}

String ReadScript(const std::string& name) {
  std::ifstream file(KESTRELON_SCRIPTS "/" + name, std::ios::binary);
  std::stringstream text;
  text << file.rdbuf();
  return FromUtf8(text.str());
}

ComPtr<IUnknown> PageAt(StringView address) {
  const auto host = MakeComObject<StandInHost>(kDocument | kBrowser, address, address);
  return static_cast<IServiceProvider*>(host.Get());
}

class Scripts : public ::testing::TestWithParam<Way> {
 protected:
  Scripts() {
    classes_.emplace_back(u"KestrelonTest.Host", 9, [this] { return report; });
  }
  // Without it the machine has neither Word nor Outlook.
  void OfferTheDesktop() { AddDesktop(classes_, desktop_); }

  // The script must come to its end, and find what it expects.
  void Run(const String& text) {
    const String prelude = PreludeOf(GetParam());
    if (place == Place::kCscript) {
      const auto path = std::filesystem::temp_directory_path() / ("ScriptsTest" + extension);
      std::ofstream(path, std::ios::binary) << ToUtf8(prelude + text);
      RunProgram(u"cscript //nologo \"" + path.u16string() + u"\"");
    } else {
      EXPECT_EQ(ToUtf8(RunScript(language, DispatchOf(report), page, {prelude, text})), "");
    }
    EXPECT_TRUE(report->is_done);
    EXPECT_GT(report->checks, 0);
    EXPECT_THAT(report->faults, ::testing::IsEmpty());
  }
  // The script of that name in the language.
  void RunFile(const std::string& name) { Run(ReadScript(name + extension)); }

  const Language language = std::get<Language>(GetParam());
  const Place place = std::get<Place>(GetParam());
  const std::string extension = language == Language::kJScript ? ".js" : ".vbs";
  const std::shared_ptr<ScriptReport> report = std::make_shared<ScriptReport>();
  ComPtr<IUnknown> page;

 private:
  ScriptedDesktop desktop_;
  StandInClasses classes_;
};

// A script of the calls in Members.txt. Each is written in words of both languages, with its result
// after "->": a value, "any" of its type, or "error" and a number.
String MemberCalls(Language language) {
  const bool is_jscript = language == Language::kJScript;
  const std::string call = is_jscript ? "" : "Call ";
  const std::string arrow = " -> ";
  std::stringstream lines(ToUtf8(ReadScript("Members.txt")));
  std::string script = "version = \"" KESTRELON_VERSION "\"\n";
  for (std::string line; std::getline(lines, line);) {
    const size_t end = line.rfind(arrow);
    const std::string member = "\"" + line.substr(0, line.find('(')) + "\", ";
    const std::string invocation = "control." + line.substr(0, end);
    const std::string result = line.substr(end + arrow.size());
    if (!result.starts_with("error ")) {
      const std::string expected = result == "any" ? "" : ", " + result;
      script += call + "host.Called(" + member + invocation + expected + ")\n";
      continue;
    }
    const std::string failure = is_jscript ? "e.number & 0xFFFF" : "Err.Number";
    script += is_jscript ? "try { " + invocation + "; throw {} } catch (e) {\n"
                         : "On Error Resume Next\nCall " + invocation + "\n";
    script += call + "host.Called(" + member + "Empty)\n" + call + "host.Equal(" + member +
              failure + ", " + result.substr(6) + ")\n";
    script += is_jscript ? "}\n" : "On Error GoTo 0\n";
  }
  return FromUtf8(script + "host.Done()\n");
}

TEST_P(Scripts, CallEveryMemberOnAMachineWithoutOffice) {
  Run(MemberCalls(language));
  std::vector<std::string> missing;
  for (const Member& member : InterfaceTable()) {
    const bool is_called = report->called.contains(String(member.name));
    if (member.kind == MemberKind::kMethod && !is_called) missing.push_back(ToUtf8(member.name));
  }
  EXPECT_THAT(missing, ::testing::IsEmpty());  // the property is a matter of the Language scripts
}

TEST_P(Scripts, MeetTheirLanguage) { RunFile("Language"); }

TEST_P(Scripts, LeadToWordAndOutlook) {
  OfferTheDesktop();
  RunFile("Roads");
}

const auto kLanguages = ::testing::Values(Language::kJScript, Language::kVBScript);
const auto kPlaces = ::testing::Values(Place::kHere, Place::kCscript);
INSTANTIATE_TEST_SUITE_P(Everywhere, Scripts, ::testing::Combine(kLanguages, kPlaces), NameOf);

class Pages : public Scripts {};

TEST_P(Pages, OfTheWebAreRefused) {
  OfferTheDesktop();
  page = PageAt(u"https://www.example.com/crm/page.htm");
  RunFile("Refused");
}

TEST_P(Pages, OfThisMachineAreServed) {
  OfferTheDesktop();
  page = PageAt(u"file:///C:/crm/page.htm");
  RunFile("Roads");
}

INSTANTIATE_TEST_SUITE_P(Here, Pages,
                         ::testing::Combine(kLanguages, ::testing::Values(Place::kHere)), NameOf);

class ExamplePage : public Scripts {};

// Its script, with stand-ins of what the browser has for it.
TEST_P(ExamplePage, WritesALetter) {
  OfferTheDesktop();
  page = PageAt(u"file:///C:/crm/Page.htm");
  const String text = ReadScript("../../../examples/Page.htm");
  const size_t start = text.find(u"<script>") + 8;
  Run(text.substr(start, text.find(u"</script>") - start) + ReadScript("ExamplePage.js"));
}

INSTANTIATE_TEST_SUITE_P(Here, ExamplePage,
                         ::testing::Values(Way{Language::kJScript, Place::kHere}), NameOf);

}  // namespace
}  // namespace kestrelon::testing
