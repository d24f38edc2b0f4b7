#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "documents/Letters.h"
#include "tests/support/Documents.h"
#include "tests/support/ScriptedDesktop.h"

namespace kestrelon {
namespace {

using ::testing::Contains;
using ::testing::Not;
using Lines = std::vector<std::string>;
using testing::ShownMessage;

constexpr const char* kLetter =
    "<Data><field name='n' templatetag='t'/><Data><r fieldname='n' value='v'/></Data></Data>";
constexpr const char* kRecord =
    "<record><field name='n' templatetag='t'/><Data><r fieldname='n' value='v'/></Data>"
    "<listitemname listkey='people'><r><f templatetag='name' value='Ann' label='Name'/></r>"
    "</listitemname></record>";
const std::string kDocument = "Word.Application.Documents.Add(\"a.dotx\")";

class Letters : public ::testing::Test {
 protected:
  Letters() {
    desktop.Answer("Word.Application.Selection.Find.Found", {false});
    desktop.Answer(kDocument + ".Tables.count", {1});
    const std::string table = kDocument + ".Tables.item(1)";
    desktop.Answer(table + ".Cell(1, 1).Range.Text", {Value(u"<people_name>\r\a")});
    desktop.Answer(table + ".Columns.Count", {1});
    desktop.Answer(table + ".Rows.Count", {1});
    desktop.Answer(kStream + ".ReadAll()", {Value(u"<html>")});
  }
  void Letter(const std::string& data = kLetter) {
    XmlDocument xml(testing::XmlDocumentOf(data).pointer());
    CreateLetterXML(context, xml, template_path, address, mode, save_path, in_header, subject);
  }
  void Seminar(const std::string& data = kRecord) {
    XmlDocument xml(testing::XmlDocumentOf(data).pointer());
    CreateSeminarLetterXML(context, xml, template_path, address, mode, save_path, in_header);
  }
  void ExpectMessage(const String& end) {
    ASSERT_FALSE(desktop.messages.empty());
    const String& text = desktop.messages.back().text;
    EXPECT_TRUE(text.ends_with(end)) << ToUtf8(text);
  }
  // The calls from the cursor's way to the top on.
  Lines AfterTags() const {
    const std::string top = kDocument + ".Range(Start:=0, End:=0).Select()";
    const auto at = std::find(desktop.log.begin(), desktop.log.end(), top);
    return {at == desktop.log.end() ? at : at + 1, desktop.log.end()};
  }

  const std::string kStream =
      "Scripting.FileSystemObject.OpenTextFile(\"/tmp/Letter05_09.htm\", 1, False, 0)";
  testing::ScriptedDesktop desktop;
  ControlContext context{desktop};
  String template_path = u"a.dotx";
  String address;
  String mode = u"HTML";
  String save_path;
  String in_header;
  String subject = u"Subject";
};

TEST_F(Letters, WithoutAnAddressIsSavedAndShown) {
  save_path = u"/out/a.docx";
  Letter();
  EXPECT_EQ(AfterTags(),
            (Lines{kDocument + ".SaveAs(\"/out/a.docx\")", "Word.Application.Visible = True"}));
  EXPECT_TRUE(desktop.messages.empty());
}

TEST_F(Letters, PdfPathIsExportedAndOnlySavedWhereThatFails) {
  save_path = u"/out/a.PDF";
  const std::string export_call =
      kDocument + ".ExportAsFixedFormat(OutputFileName:=\"/out/a.PDF\", ExportFormat:=17)";
  Letter();
  EXPECT_EQ(AfterTags(), (Lines{export_call, "Word.Application.Visible = True"}));
  desktop.log.clear();
  desktop.Fail(export_call, AutomationError(4198));
  Letter();
  EXPECT_EQ(AfterTags(), (Lines{export_call, kDocument + ".SaveAs(\"/out/a.PDF\")",
                                "Word.Application.Visible = True"}));
  EXPECT_THAT(desktop.messages,
              ::testing::ElementsAre(ShownMessage{
                  u"Unable to export to PDF.  PDF Export requires Word 2007 or above with "
                  u"Microsoft's free 'Save as PDF' add-in",
                  64, u"Kestrelon"}));
}

TEST_F(Letters, MailAttachesADocumentUnlessTheModeIsExactlyHtml) {
  address = u"a@b";
  mode = u"html";
  Letter();
  const std::string mail = "Outlook.Application.CreateItem(0)";
  EXPECT_EQ(AfterTags(),
            (Lines{"create Outlook.Application", mail, mail + ".Recipients",
                   mail + ".Recipients.Add(\"a@b\")", mail + ".Subject = \"Subject\"",
                   kDocument + ".SaveAs(\"/tmp/Attachment.Doc\")", kDocument + ".Close()",
                   "Word.Application.Quit(0)", mail + ".Attachments",
                   mail + ".Attachments.Add(\"/tmp/Attachment.Doc\")", mail + ".display()",
                   "create Scripting.FileSystemObject",
                   "Scripting.FileSystemObject.DeleteFile(\"/tmp/Attachment.Doc\", True)"}));
  EXPECT_TRUE(context.state.outlook_application.IsNothing());
}

TEST_F(Letters, HtmlMailTakesTheSavedFileAsItsBody) {
  address = u"a@b";
  Letter();
  const std::string mail = "Outlook.Application.CreateItem(0)";
  const std::string file = "/tmp/Letter05_09.htm";
  EXPECT_EQ(AfterTags(),
            (Lines{"create Outlook.Application", mail, mail + ".Recipients",
                   mail + ".Recipients.Add(\"a@b\")", mail + ".Subject = \"Subject\"",
                   kDocument + ".SaveAs(FileName:=\"" + file + "\", FileFormat:=8)",
                   kDocument + ".Close()", "Word.Application.Quit(0)",
                   "create Scripting.FileSystemObject", kStream, kStream + ".ReadAll()",
                   kStream + ".Close()", mail + ".HTMLBody = \"<html>\"", mail + ".display()",
                   "create Scripting.FileSystemObject",
                   "Scripting.FileSystemObject.DeleteFile(\"" + file + "\", True)"}));
}

TEST_F(Letters, TagTableWithEmptySlotsIsWalkedWhole) {
  Letter();
  // Two children of the root make three slots, each of which selects the document once more.
  const auto selects = std::count(desktop.log.begin(), desktop.log.end(), kDocument + ".Select()");
  EXPECT_EQ(selects, 1 + 3);
}

TEST_F(Letters, SeminarFillsTheTablesThatNameItsList) {
  address = u"a@b";
  for (const auto& [header, is_filled] : {std::pair(u"<people_name>\r\a", true),
                                          {u"<people>\r\a", true},
                                          {u"<others_name>\r\a", false},
                                          {u"people_name\r\a", false},
                                          {u"<_x>\r\a", false}}) {
    desktop.log.clear();
    desktop.Answer(kDocument + ".Tables.item(1).Cell(1, 1).Range.Text", {Value(header)});
    Seminar();
    const std::string add = kDocument + ".Tables.item(1).Rows.Add()";
    EXPECT_EQ(std::count(desktop.log.begin(), desktop.log.end(), add) > 0, is_filled);
    EXPECT_TRUE(desktop.messages.empty());
    EXPECT_THAT(desktop.log, Not(Contains("create Outlook.Application")));
    EXPECT_EQ(desktop.log.back(), "Word.Application.Visible = True");
  }
}

struct Failure {
  const char* call;
  const char16_t* message;
  bool shows_word = false;
};

TEST_F(Letters, ReportsEachStageInItsOwnWords) {
  save_path = u"/out/a.docx";
  address = u"a@b";
  const Failure failures[] = {
      {"create Word",
       u"An error occurred whilst attempting to open Microsoft Word. Ensure Microsoft Word is "
       u"available on this machine."},
      {"Word.Application.Documents",
       u"An error occurred whilst attempting to open file 'a.dotx'. Check this file exists, and is "
       u"in the location specified."},
      {"Word.Application.Documents.Add(\"a.dotx\").Range",
       u"An error occurred attempting to insert the address information into the Microsoft Word "
       u"Document. Check the fields have been added to the document to replace. '' Boom"},
      {"Word.Application.Documents.Add(\"a.dotx\").SaveAs(\"/out",
       u"An error occurred saving a copy of the document in CreateLetterXML:-Boom"},
      {"create Outlook",
       u"An error occurred running Outlook at step 1: Instantiating Outlook. Check that outlook is "
       u"installed and can be run.Boom"},
      {"Word.Application.Quit",
       u"An error occurred running Outlook at step 3:Generating html file from word document. "
       u"Check that outlook is installed and can be run.Boom"},
      {"Outlook.Application.CreateItem(0).Attachments",
       u"An error occurred running Outlook at step 2: Adding attachments. Check that outlook is "
       u"installed and can be run.Boom"},
      {"Outlook.Application.CreateItem(0).display",
       u"An error occurred running Outlook at step 4: Displaying outlook. Check that outlook is "
       u"installed and can be run.Boom"},
  };
  for (const Failure& failure : failures) {
    desktop.messages.clear();
    desktop.StopFailing();
    desktop.Fail(failure.call, AutomationError(1234, u"Boom"));
    mode = std::string_view(failure.call).ends_with("Attachments") ? u"attach" : u"HTML";
    Letter();
    EXPECT_THAT(desktop.messages,
                ::testing::ElementsAre(ShownMessage{failure.message, 0, std::nullopt}))
        << failure.call;
  }
  // Nothing is let go of after a failure.
  EXPECT_FALSE(context.state.outlook_application.IsNothing());
}

TEST_F(Letters, SeminarReportsEachStageInItsOwnWords) {
  save_path = u"/out/a.docx";
  const Failure failures[] = {
      {"create Word", u"Error starting word - Boom"},
      {"Word.Application.Documents", u"Error opening template doc 'a.dotx' - Boom"},
      {"Word.Application.Documents.Add(\"a.dotx\").Range",
       u"Error in template build replacing seminar tags ('') - Boom"},
      {"Word.Application.Documents.Add(\"a.dotx\").Tables.item(1).Rows.Add",
       u"Error in template build checking tables - Boom. Last header retrieved <people_name>"},
      {"Word.Application.Documents.Add(\"a.dotx\").SaveAs",
       u"Error saving document to '/out/a.docx' - Boom Please inform your systems administrator",
       true},
  };
  for (const Failure& failure : failures) {
    desktop.messages.clear();
    desktop.log.clear();
    desktop.StopFailing();
    desktop.Fail(failure.call, AutomationError(1234, u"Boom"));
    Seminar();
    EXPECT_THAT(desktop.messages,
                ::testing::ElementsAre(ShownMessage{failure.message, 0, std::nullopt}))
        << failure.call;
    EXPECT_EQ(desktop.log.back() == "Word.Application.Visible = True", failure.shows_word);
  }
}

TEST_F(Letters, MissingTemplateIsToldAndWordStaysStarted) {
  template_path = u"";
  Letter();
  Seminar();
  const ShownMessage told{u"No template has been specified for the document", 48, std::nullopt};
  EXPECT_THAT(desktop.messages, ::testing::ElementsAre(told, told));
  EXPECT_EQ(desktop.log, (Lines{"create Word.Application", "create Word.Application"}));
}

TEST_F(Letters, DataThatHasNoTagTableIsTold) {
  Letter("<other/>");
  EXPECT_EQ(desktop.messages.size(), 2U);
  ExpectMessage(u" Subscript out of range");
  std::string children;
  for (int i = 0; i < 32768; ++i) children += "<x/>";
  Letter("<Data>" + children + "<Data/></Data>");
  ExpectMessage(u"replace. '' Overflow");
  Seminar(kLetter);
  ExpectMessage(
      u"Error in template build extracting field tags - Object variable or With block variable "
      u"not set");
}

TEST_F(Letters, ContactLetterIsRetired) {
  HtmlDocument page;
  CreateContactLetter(context, page, template_path);
  EXPECT_THAT(desktop.messages, ::testing::ElementsAre(ShownMessage{
                                    u"This interface has been removed", 0, std::nullopt}));
}

}  // namespace
}  // namespace kestrelon
