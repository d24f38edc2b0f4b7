#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "documents/Quotes.h"
#include "tests/support/Documents.h"
#include "tests/support/FailEachCall.h"
#include "tests/support/ScriptedDesktop.h"

namespace kestrelon {
namespace {

using ::testing::ElementsAre;
using testing::ScriptedDesktop;
using testing::ShownMessage;

// The four children of the root make five slots for tags, of which one is used.
constexpr const char* kQuote =
    "<Data><quotefields><quotefield name='Product' label='Item'/>"
    "<quotefield name='Price' templatetag='cost'/></quotefields>"
    "<quoterows><r product='Ox' price='1'/><r item='Yak' cost='2'/></quoterows>"
    "<field name='n' templatetag='t'/><Data><r fieldname='n' value='v'/></Data></Data>";
constexpr const char16_t* kRow = u"<!-- QuoteRowStart -->&lt;COST&gt;<!-- QuoteRowEnd -->\r\n";
const std::string kShown = "word.Visible = True";
const std::string kCopy = "/tmp/Kestrelontable.htm";

std::string Reading(const std::string& file) {
  return "files.OpenTextFile(\"" + file + "\", 1, False, 0)";
}

struct QuoteArguments {
  String address = u"a@b", subject = u"Roof", mail_type = u"attach", address_type;
  String template_path = u"/t/q.v2.dotx", format, save_path, in_header, visible, file_name;
};

String Save(ControlContext& context, QuoteArguments& a) {
  XmlDocument xml(testing::XmlDocumentOf(kQuote).pointer());
  return WordQuote(context, xml, a.template_path, a.save_path, a.visible, a.in_header);
}

String Mail(ControlContext& context, QuoteArguments& a) {
  XmlDocument xml(testing::XmlDocumentOf(kQuote).pointer());
  return WordQuoteHtml(context, xml, a.address, a.subject, a.mail_type, a.address_type,
                       a.template_path, a.format, a.save_path, a.in_header, a.visible, a.file_name);
}

// A template with a table, or with "<htmltable>" in front of `place`.
void Script(ScriptedDesktop& desktop, const char16_t* place = nullptr) {
  const char* const names[][2] = {{"create Word.Application", "word"},
                                  {"word.Documents.Add(\"/t/q.v2.dotx\")", "doc"},
                                  {"doc.Tables.item(1)", "table"},
                                  {"word.Selection", "sel"},
                                  {"create Outlook.Application", "outlook"},
                                  {"outlook.CreateItem(0)", "mail"},
                                  {"create Scripting.FileSystemObject", "files"},
                                  {"create microsoft.xmlhttp", "http"}};
  for (const auto& [line, name] : names) desktop.Answer(line, {desktop.NamedObject(name)});
  desktop.Answer("sel.Find.Found", {place != nullptr, false});
  desktop.Answer("sel.Text", {place == nullptr ? u"" : u"<HTMLtable>" + String(place)});
  desktop.Answer("doc.Tables.count", {1});
  desktop.Answer("table.Rows.Count", {2});
  desktop.Answer("table.Columns.Count", {3});
  for (const auto& [cell, header] : {std::pair("(1, 1)", u"<ITEM>\r\a"),
                                     {"(1, 2)", u"Number\r\a"},
                                     {"(1, 3)", u"<price>\r\a"}}) {
    desktop.Answer(std::string("table.Cell") + cell + ".Range.Text", {Value(header)});
  }
  desktop.Answer("doc.Range().End", {9});
  for (const std::string& file : {kCopy, std::string("/tmp/table.htm")}) {
    desktop.Answer(Reading(file) + ".ReadAll()", {Value(kRow)});
  }
  desktop.Answer(Reading("/tmp/Offer_1.htm") + ".ReadAll()", {Value(u"<html>")});
}

class Quotes : public ::testing::Test {
 protected:
  Quotes() { Script(desktop); }

  // The calls from the first to the last of these.
  std::string Between(const std::string& first, const std::string& last) const {
    std::string calls;
    for (const std::string& line : desktop.log) {
      if (calls.empty() && line != first) continue;
      calls += (calls.empty() ? "" : " | ") + line;
      if (line == last) break;
    }
    return calls;
  }
  // The calls after the last tag.
  std::string AfterTags() {
    const auto tag = std::find(desktop.log.rbegin(), desktop.log.rend(), "doc.Select()");
    desktop.log.erase(desktop.log.begin(), tag.base());
    return desktop.log.empty() ? "" : Between(desktop.log.front(), "");
  }
  int Count(const std::string& line) const {
    return static_cast<int>(std::count(desktop.log.begin(), desktop.log.end(), line));
  }

  ScriptedDesktop desktop;
  ControlContext context{desktop};
  QuoteArguments arguments;
};

TEST_F(Quotes, FillTheFirstTableAndReplaceTheTags) {
  arguments.save_path = u"/out/q.pdf ";
  EXPECT_EQ(Save(context, arguments), u"success");
  std::string expected =
      "create Word.Application | word.Documents | word.Documents.Add(\"/t/q.v2.dotx\") | "
      "doc.Select() | word.Selection | sel.Find | sel.Find.MatchCase = False | sel.Find.forward = "
      "True | "
      "sel.Find.wrap = 1 | sel.Find.text = \"<htmltable>\" | sel.Find.Execute() | sel.Find.Found | "
      "doc.Tables | doc.Tables.count | doc.Tables.item(1) | table.Rows | table.Rows.Count | "
      "table.Rows.Add() | table.Columns | table.Columns.Count";
  for (const std::string access :
       {"(1, 1).Range.Text", "(1, 2).Range.Text", "(1, 3).Range.Text", "(2, 1).Range.Text = \"Ox\"",
        "(2, 3).Range.Text = \"1\"", "(3, 1).Range.Text = \"Yak\"", "(3, 3).Range.Text = \"2\"",
        "(1, 1).Range.Text = \"Item\"", "(1, 3).Range.Text = \"Price\""}) {
    const std::string cell = " | table.Cell" + access.substr(0, 6);
    expected += cell + cell + ".Range | table.Cell" + access;
  }
  const std::string all = "doc.Range(Start:=0, End:=9)";
  expected += " | doc.Range() | doc.Range().End | " + all + " | " + all + ".Select()";
  EXPECT_EQ(Between("create Word.Application", all + ".Select()"), expected);
  EXPECT_EQ(Count(all + ".Select()"), 5);
  EXPECT_EQ(AfterTags(), "doc.SaveAs(\"/out/q.pdf \") | " + kShown);
  EXPECT_TRUE(desktop.messages.empty());
}

TEST_F(Quotes, InsertTheExpandedTableTemplateWhereTheTagStands) {
  Script(desktop, u" table.htm \r");
  EXPECT_EQ(Save(context, arguments), u"success");
  EXPECT_EQ(Between("sel.Find.Found", "sel.Delete()"),
            "sel.Find.Found | sel.MoveDown(Unit:=4, Extend:=1) | sel.Text | sel.MoveEnd(1, -1) | "
            "sel.Delete()");
  const std::string deleted = "files.DeleteFile(\"" + kCopy + "\", False)";
  EXPECT_EQ(Between("word.ChangeFileOpenDirectory(\"/tmp\")", deleted),
            "word.ChangeFileOpenDirectory(\"/tmp\") | word.Selection | sel.Range | "
            "sel.Range.InsertFile(FileName:=\"Kestrelontable.htm\", ConfirmConversions:=False, "
            "link:=False, Attachment:=False) | create Scripting.FileSystemObject | " +
                deleted);
}

TEST_F(Quotes, TakeTheTagOutBeforeTheMarksBehindIt) {
  const std::pair<const char16_t*, int> cases[] = {
      {u"table.htm", 0}, {u"table.htm\v\f\f", -2}, {u"table.htm\r\a\r\a", -2}};
  for (const auto& [place, moved] : cases) {
    desktop.log.clear();
    Script(desktop, place);
    EXPECT_EQ(Save(context, arguments), u"success");
    EXPECT_EQ(Count("sel.MoveEnd(1, " + std::to_string(moved) + ")"), moved == 0 ? 0 : 1);
  }
}

TEST_F(Quotes, FetchATableTemplateFromItsServer) {
  desktop.Answer("http.responseText", {Value(u"fetched")});
  Script(desktop, u"ftp://crm/t/table.htm\r");
  EXPECT_EQ(Save(context, arguments), u"success");
  const std::string stream = "files.CreateTextFile(\"/tmp/table.htm\", True)";
  EXPECT_EQ(Between("create microsoft.xmlhttp", stream + ".Close()"),
            "create microsoft.xmlhttp | http.open(\"GET\", \"ftp://crm/t/table.htm\", False) | "
            "http.setRequestHeader(\"Content-type:\", \"text/xml\") | "
            "http.setRequestHeader(\"Translate:\", \"f\") | http.send() | http.responseText | "
            "create Scripting.FileSystemObject | " +
                stream + " | " + stream + ".Write(\"fetched\") | " + stream + ".Close()");
  EXPECT_EQ(Count("files.DeleteFile(\"/tmp/table.htm\", False)"), 1);
}

TEST_F(Quotes, LookForATableTemplateBesideTheWordTemplate) {
  const std::tuple<const char16_t*, const char16_t*, std::string> cases[] = {
      {u"a/b.htm\r\a", u"C:/t/q.dotx", "C:/t/a/b.htm"},
      {u"b.htm", u"C:\\t\\q.dotx", "C:\\\\t\\\\b.htm"},
      {u"b.htm", u"q.dotx", "b.htm"},
      {u" \x13 HYPERLINK \"x\" \x14s/b.htm\x15\r", u"/q.dotx", "/s/b.htm"},
      {u"\\\\host\\b.htm", u"/t/q.dotx", "\\\\\\\\host\\\\b.htm"},
      {u"D:\\b.htm\r", u"/t/q.dotx", "D:\\\\b.htm"},
  };
  for (const auto& [place, template_path, file] : cases) {
    desktop.log.clear();
    Script(desktop, place);
    arguments.template_path = template_path;
    Save(context, arguments);
    EXPECT_EQ(Count("files.CopyFile(\"" + file + "\", \"/tmp/Kestrelonb.htm\", True)"), 1) << file;
  }
}

TEST_F(Quotes, WithoutATableAreToldOfAndGoOnWithTheTags) {
  desktop.Answer("doc.Tables.count", {0});
  EXPECT_EQ(Save(context, arguments), u"success");
  EXPECT_THAT(desktop.messages,
              ElementsAre(ShownMessage{u"The quote template has no table for line data", 64,
                                       u"Kestrelon"}));
  EXPECT_EQ(Count("sel.Find.text = \"<t>\""), 1);
}

TEST_F(Quotes, AreShownBeforeTheyAreFilledWhenAsked) {
  for (const auto& [visible, saving, mailing] :
       {std::tuple(u"true", 2, 0), {u"1", 1, 1}, {u"True", 1, 0}}) {
    arguments.visible = visible;
    desktop.log.clear();
    Save(context, arguments);
    EXPECT_EQ(Count(kShown), saving);
    EXPECT_EQ(desktop.log[1] == kShown, saving == 2);
    Mail(context, arguments);
    EXPECT_EQ(Count(kShown), saving + mailing);
  }
}

TEST_F(Quotes, TravelInTheMailThatTheTypeAsksFor) {
  const std::string html = "\", FileFormat:=8)";
  const std::tuple<const char16_t*, const char16_t*, std::string, std::string> cases[] = {
      {u"attach", u"../Offer\\1", "/tmp/.._Offer_1.doc", "SaveAs(\"/tmp/.._Offer_1.doc\")"},
      {u"AttachHtml", u"", "/tmp/q.v2.htm", "SaveAs(FileName:=\"/tmp/q.v2.htm" + html},
      {u"ATTACHPDF", u"", "/tmp/q.v2.pdf",
       "ExportAsFixedFormat(OutputFileName:=\"/tmp/q.v2.pdf\", ExportFormat:=17)"},
      {u"Quote", u"<Offer> 1", "/tmp/Offer_1.htm", "SaveAs(FileName:=\"/tmp/Offer_1.htm" + html},
  };
  arguments.save_path = u"/out/q.doc";
  for (const auto& [type, name, file, saved] : cases) {
    desktop.log.clear();
    arguments.mail_type = type;
    arguments.file_name = name;
    EXPECT_EQ(Mail(context, arguments), u"success");
    const bool is_body = arguments.mail_type == u"Quote";
    const std::string reading = "files.OpenTextFile(\"" + file + "\", 1, False, 0)";
    const std::string body = "create Scripting.FileSystemObject | " + reading + " | " + reading +
                             ".ReadAll() | " + reading + ".Close() | mail.HTMLBody = \"<html>\"";
    EXPECT_EQ(AfterTags(),
              "create Outlook.Application | outlook.CreateItem(0) | mail.Recipients | "
              "mail.Recipients.Add(\"a@b\") | mail.Subject = \"" +
                  std::string(is_body ? "Quote: " : "Report on: ") + "Roof\" | doc." + saved +
                  " | " +
                  (is_body ? body : "mail.Attachments | mail.Attachments.Add(\"" + file + "\")") +
                  " | mail.display() | doc.SaveAs(\"/out/q.doc\") | doc.Close() | "
                  "word.Quit() | create Scripting.FileSystemObject | files.DeleteFile(\"" +
                  file + "\", False)");
    EXPECT_EQ(arguments.file_name, name) << "the page's own value";
  }
}

TEST_F(Quotes, FallBackToADocumentWhereNoPdfCanBeMade) {
  desktop.Fail("doc.ExportAsFixedFormat", AutomationError(1));
  arguments.mail_type = u"attachpdf";
  arguments.save_path = u"/out/q.pdf";
  EXPECT_EQ(Mail(context, arguments), u"success");
  EXPECT_EQ(Count("mail.Attachments.Add(\"/tmp/q.v2.doc\")"), 1);
  ASSERT_EQ(desktop.messages.size(), 4U) << "each failed export is told of by itself, too";
  EXPECT_EQ(desktop.messages[1].text, u"Unable to write as PDF.  Will be written as doc instead");
  EXPECT_EQ(desktop.messages[1].flags, 64);
  EXPECT_EQ(desktop.messages[3].text,
            u"Unable to save document as PDf format.  PDF save requires Word 2007 or above with "
            u"the appropriate Microsoft add-in");
  EXPECT_EQ(desktop.messages[3].flags, 48);
  arguments.save_path = u"/TMP/q.v2.doc";
  EXPECT_EQ(Mail(context, arguments), u"success");
  EXPECT_EQ(Count("files.DeleteFile(\"/tmp/q.v2.doc\", False)"), 1) << "the page wants the second";
  desktop.Fail("outlook.CreateItem", AutomationError(1));
  EXPECT_EQ(Mail(context, arguments), u"");
  EXPECT_EQ(desktop.messages.back().title, u"Quote generation failed") << "neither tags nor saving";
}

TEST_F(Quotes, ReportEachStageInItsOwnWords) {
  struct Failure {
    std::string call;
    String message;
    bool quits = false;
    int32_t flags = 0;
    const char16_t* title = u"Kestrelon";
  };
  const String step = u"BoomStep Information: ";
  const String external = u"Step Information: Processing external table template";
  const Failure failures[] = {
      {"create Word", u"Unable to start Microsoft Word - check that it is installed correctly",
       false, 48},
      {"word.Documents.Add",
       u"An error has occurred creating a Quote in Microsoft Word. An unknown error has occurred "
       u"please contact your System Administrator",
       true, 0, u"Quote generation failed"},
      {"doc.Select",
       u"An error occurred attempting to insert the address information in the Microsoft Word "
       u"Document. Check the fields have been added to the document to replace.",
       true},
      {"doc.SaveAs(\"/out/q.doc\")",
       u"The document could not be saved to '/out/q.doc'.   Please inform your systems "
       u"administrator",
       true},
      {"sel.Find.Execute", step + u"Searching for external table tag"},
      {"table.Rows.Add", step + u"Processing in-line table"},
      {"table.Cell(2, 1)", step + u"Processing in-line table headers"},
      {"doc.Range", u"An error has occurred replacing the document tags: " + step +
                        u"Performing document data replacement"},
      {"files.CopyFile",
       u"An Error occurred on first reference to html template '/t/table.htm'Ensure "
       u"that the html file exists in the quotes templates directory and can be "
       u"accessed" +
           external},
      {Reading(kCopy),
       u"An Error occurred adding data to html template '/t/table.htm': Ensure that "
       u"html table template is correctly formatted" +
           external},
      {"sel.Range.InsertFile",
       u"An Error occurred Inserting the HTML template from path "
       u"'/t/table.htm' into the word document: Boom" +
           external},
  };
  arguments.save_path = u"/out/q.doc";
  for (const Failure& failure : failures) {
    const bool is_external = failure.message.ends_with(external);
    for (String (*member)(ControlContext&, QuoteArguments&) : {&Save, &Mail}) {
      desktop.messages.clear();
      desktop.log.clear();
      desktop.StopFailing();
      Script(desktop, is_external ? u"table.htm\r" : nullptr);
      desktop.Fail(failure.call, AutomationError(1234, u"Boom"));
      EXPECT_EQ(member(context, arguments), u"") << failure.call;
      const ShownMessage told{failure.message, failure.flags, failure.title};
      EXPECT_THAT(desktop.messages, ElementsAre(told)) << failure.call;
      EXPECT_EQ(Count("word.Quit()"), failure.quits ? 1 : 0) << failure.call;
    }
  }
}

// A reported failure ends in "", a passed over one in "success", and Outlook is let go of.
TEST(QuotesThatFail, TellOfEveryCallThatCannotBePassedOver) {
  for (const char16_t* type : {u"", u"attach", u"attachhtml", u"attachpdf", u"Quote"}) {
    QuoteArguments arguments;
    arguments.save_path = u"/out/q.pdf";
    arguments.file_name = u"Offer 1";
    arguments.mail_type = type;
    const int failures = testing::FailEachCall(
        [](ScriptedDesktop& desktop) { Script(desktop, u"table.htm\r"); },
        [&](ControlContext& context, ScriptedDesktop& desktop) {
          const String result = (*type == 0 ? Save : Mail)(context, arguments);
          const std::string& failed = desktop.failed_line;
          const bool may_pass = failed.empty() || failed.ends_with("FileSystemObject") ||
                                failed.starts_with("files.Delete");
          EXPECT_TRUE(result == u"success" || result.empty()) << ToUtf8(result);
          EXPECT_TRUE(!desktop.messages.empty() || (may_pass && !result.empty())) << failed;
          EXPECT_TRUE(context.state.outlook_application.IsNothing()) << failed;
        });
    EXPECT_GT(failures, 60);
  }
}

}  // namespace
}  // namespace kestrelon
