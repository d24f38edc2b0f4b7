#include <algorithm>
#include <tuple>

#include "documents/ReportPdf.h"
#include "tests/support/FailEachCall.h"

namespace kestrelon {
namespace {

using testing::ScriptedDesktop;
using testing::ShownMessage;
using Messages = std::vector<ShownMessage>;

constexpr char kOpen[] = "AcroExch.AVDoc.open(\"/tmp/Quo1A2B.htm\", \"\")";
constexpr char kSave[] = "content.save(1, \"/tmp/Quote 1230.pdf\")";

ShownMessage Failed(const String& number) {
  return {u"An error occurred attempting to convert the quote to a PDF file. Error number:" +
              number + u"Please contact your system administrator",
          0, std::nullopt};
}
const ShownMessage kNotConverted = Failed(u"-2147221502");
const ShownMessage kNotMailed = Failed(u"-2147221501");
const ShownMessage kNotDeleted = Failed(u"-2147221500");
const ShownMessage kInstall = {
    u"Adobe Acrobat was not detected on your system and therefore Kestrelon was unable to generate "
    u"a pdf file attachment. Please contact your system administrator",
    64, u"Install Adobe Acrobat"};

// Acrobat takes a while for the page; all goes well.
void Script(ScriptedDesktop& desktop) {
  const std::pair<std::string, const char*> objects[] = {
      {"create AcroExch.App", "app"},
      {"app.GetActiveDoc()", "window"},
      {"window.GetPDDoc()", "content"},
      {"create Outlook.Application", "outlook"},
      {"outlook.CreateItem(0)", "mail"},
      {"create Scripting.FileSystemObject", "files"},
      {"files.GetFile(\"/tmp/Quo1A2B.tmp\")", "page"},
      {"page.OpenAsTextStream(2)", "page"}};
  for (const auto& [line, name] : objects) desktop.Answer(line, {desktop.NamedObject(name)});
  desktop.Answer("page.Name", {u"Quo1A2B.tmp", u"Quo1A2B.htm"});
  desktop.Answer("app.GetNumAVDocs()", {0, 1});
  for (const char* line : {kOpen, "window.isValid()", kSave}) desktop.Answer(line, {true});
}

// The name as the caller gets it back.
String Make(ControlContext& context, String unique_name = u"Quote 12:30") {
  String texts[] = {u"<p>\u0141", u"", u"Q-17", u"Quote", u"Fax"};
  CreateHTMforPDF(context, texts[0], unique_name, texts[1], texts[2], texts[3], texts[4]);
  const ObjectState& state = context.state;
  EXPECT_FALSE(state.acrobat_application || state.acrobat_document || state.acrobat_pd_document ||
               state.outlook_application || state.current_mail);
  return unique_name;
}

class ReportPdf : public ::testing::Test {
 protected:
  void SetUp() override { Script(desktop); }
  auto Count(const std::string& line) const {
    return std::count(desktop.log.begin(), desktop.log.end(), line);
  }

  ScriptedDesktop desktop;
  ControlContext context{desktop};
};

TEST_F(ReportPdf, PageIsConvertedMailedAndRemoved) {
  Make(context);
  String log;
  for (const std::string& line : desktop.log) log += FromUtf8(line) + u";\n";
  EXPECT_EQ(log,
            ReplaceAll(uR"(temp file in /tmp/ for Quote 1230; create Scripting.FileSystemObject;
files.GetFile("/tmp/Quo1A2B.tmp"); page.Name; page.Name = "Quo1A2B.htm"; page.OpenAsTextStream(2);
page.WriteLine("<p>&#321;"); page.Close(); page.Name; create AcroExch.App; create AcroExch.AVDoc;
AcroExch.AVDoc.open("/tmp/Quo1A2B.htm", ""); app.GetNumAVDocs(); pause 100; app.GetNumAVDocs();
app.GetActiveDoc(); window.isValid(); window.GetPDDoc(); content.Create();
content.save(1, "/tmp/Quote 1230.pdf"); content.Close(); window.Close(True); app.Exit();
create Outlook.Application; outlook.CreateItem(0); mail.Recipients;
mail.Recipients.Add("ENTER THE FAX ADDRESS OF THE RECIPIENT OF THE QUOTE HERE");
mail.Subject = "Quote: Q-17"; mail.Attachments; mail.Attachments.Add("/tmp/Quote 1230.pdf");
mail.display(); files.GetFile("/tmp/Quote 1230.pdf");
files.GetFile("/tmp/Quote 1230.pdf").Delete(True); page.Delete(True);
)",
                       u"; ", u";\n"));
}

TEST_F(ReportPdf, NameIsCleanedForItsColonAndForTheTemporaryFile) {
  const std::tuple<String, std::string, String> cases[] = {
      {u"Q/1", "Q1", u"Q/1"},
      {u"a:/\\*?<>\"#|", "a#", u"a|"},
      {u"\u20AC\u03A9|\tx", "\x80x", u"\u20AC\u03A9|\tx"},
  };
  for (const auto& [name, prefix, pdf] : cases) {
    desktop.log.clear();
    desktop.Answer("files.GetFile(\"/tmp/" + prefix.substr(0, 3) + "1A2B.tmp\")",
                   {desktop.NamedObject("page")});
    EXPECT_EQ(Make(context, name), pdf);
    EXPECT_EQ(desktop.log[0], "temp file in /tmp/ for " + prefix);
  }
}

TEST_F(ReportPdf, AFailureOfAnyCallIsToldOnceByWhatItKeepsFromTheUser) {
  // By the start of the line; nothing can fail where there is none.
  const std::pair<const char*, Messages> cases[] = {
      {"create AcroExch", {kInstall}},
      {"create Outlook", {kNotMailed}},
      {"outlook", {kNotMailed}},
      {"mail", {kNotMailed}},
      {"page.Delete", {}},
      {"files.GetFile(\"/tmp/Quote 1230", {kNotDeleted}}};
  const auto run = [&](ControlContext& failing, ScriptedDesktop& desktop) {
    Make(failing);
    const std::string& line = desktop.failed_line;
    Messages expected(line.empty() ? 0 : 1, kNotConverted);
    for (const auto& [start, messages] : cases) {
      if (line.starts_with(start)) expected = messages;
    }
    EXPECT_EQ(desktop.messages, expected) << line;
    EXPECT_EQ(desktop.log.back() == "page.Delete(True)", expected.empty()) << line;
  };
  EXPECT_EQ(testing::FailEachCall(Script, run), 33);
}

TEST_F(ReportPdf, AcrobatIsAskedForAMinuteAndOnlyWhenItOpensThePage) {
  desktop.Answer("app.GetNumAVDocs()", {0});
  Make(context);
  EXPECT_EQ(Count("pause 100"), 600);
  EXPECT_EQ(Count("app.GetActiveDoc()") + Count("app.Exit()"), 0);
  desktop.Answer(kOpen, {false});
  Make(context);
  EXPECT_EQ(Count("app.GetNumAVDocs()"), 601);
  desktop.temp_file_fails = true;
  Make(context);
  EXPECT_EQ(Count("create AcroExch.App"), 2);
  EXPECT_EQ(desktop.messages, Messages(3, kNotConverted));
}

TEST_F(ReportPdf, ADocumentThatIsInvalidOrUnsavedIsToldAndGoneOnWith) {
  desktop.Answer(kSave, {false});
  Make(context);
  EXPECT_EQ(Count("mail.display()"), 1);
  desktop.Answer("window.isValid()", {false});
  Make(context);
  const ShownMessage unsaved = {u"Unable to save document", 0, std::nullopt};
  const ShownMessage invalid = {u"myAdobeDoc is not valid anymore!", 0, std::nullopt};
  EXPECT_EQ(desktop.messages, (Messages{unsaved, invalid, kNotConverted}));
}

}  // namespace
}  // namespace kestrelon
