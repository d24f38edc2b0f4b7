#include "documents/Letters.h"

#include <limits>

#include "Control/ErrorReporting.h"
#include "Control/LocaleAndEnvironment.h"
#include "documents/LetterMail.h"
#include "documents/PdfExport.h"
#include "documents/TagData.h"
#include "documents/TagReplacement.h"

namespace kestrelon {
namespace {

constexpr const char16_t* kNoTemplate = u"No template has been specified for the document";

// Ways to report a failed stage: with the error's description between two texts, or with a text
// that does not say what went wrong.
auto Report(ControlContext& context, const String& before, const String& after = {}) {
  return [&context, before, after](const AutomationError& error) {
    ShowMessage(context, before + error.description() + after);
  };
}
auto ReportOnly(ControlContext& context, const String& text) {
  return [&context, text](const AutomationError&) { ShowMessage(context, text); };
}

template <typename Reporter>
bool StartWord(ControlContext& context, Object& word, const Reporter& report) {
  return Attempt([&] { word = context.platform.CreateObject(u"Word.Application"); }, report);
}

template <typename Reporter>
bool OpenTemplate(const Object& word, const String& template_path, Object& document,
                  const Reporter& report) {
  const auto open = [&] {
    document = word.GetChild(u"Documents").CallChild(u"Add", template_path);
    document.Call(u"Select");
  };
  return Attempt(open, report);
}

// Replaces every tag of the table, empty slots included, and puts the cursor at the top.
template <typename Reporter>
bool ReplaceAllTags(ControlContext& context, const Object& document, const Object& word,
                    const String& replace_in_header, String& step, const Reporter& report) {
  const auto replace = [&] {
    const int32_t last = context.state.tag_table.UpperBound();
    for (int32_t i = 0; i <= last; ++i) {
      // The index is a 16-bit one.
      if (i > std::numeric_limits<int16_t>::max()) throw AutomationError(kOverflow);
      step = u"'" + context.state.tag_table.Tags[static_cast<size_t>(i)] + u"'";
      ReplaceOneTag(context, document, word, static_cast<int16_t>(i), replace_in_header);
    }
    document.CallChild(u"Range", Named(u"Start", 0), Named(u"End", 0)).Call(u"Select");
  };
  return Attempt(replace, report);
}

bool ReadTags(ControlContext& context, const Object& xmlDoc, String& temp_path, String& step) {
  const auto read = [&] {
    temp_path = GetTheTempPath(context);
    step = u"1: Reading tag information";
    ExtractTagData(context, xmlDoc);
    step = u"2: Reading document header information";
  };
  return Attempt(read, [&](const AutomationError& error) {
    ShowMessage(context, u"An error occurred in CreateLetterXML:-" + error.description() +
                             u" at step " + step);
  });
}

void ReportNoTemplate(ControlContext& context) {
  Attempt([&] { ShowMessage(context, kNoTemplate, kExclamation); },
          ReportOnly(context,
                     u"An error occurred whilst attempting to open the default letter template "
                     u"file. Check this file exists, and is in the location specified."));
}

// The records that a table is to be filled with, by the tag in its first header cell: the list
// named before the first "_", or by the whole tag. Nothing when the record has no such list.
Object FindListNode(const Object& xmlDoc, const String& header) {
  String key = header.substr(1);
  const size_t underscore = key.find(u'_');
  const bool has_field = underscore != String::npos && underscore >= 1;
  key = key.substr(0, has_field ? underscore : key.size() - 1);
  return xmlDoc.CallChild(u"selectSingleNode", u"record/listitemname[@listkey='" + key + u"']");
}

void FillListTables(const Object& document, const Object& xmlDoc, String& header) {
  const Object tables = document.GetChild(u"Tables");
  const int32_t count = tables.Get(u"count").ToLong();
  for (int32_t t = 1; t <= count; ++t) {
    const Object table = tables.CallChild(u"item", t);
    const Object first_cell = table.CallChild(u"Cell", 1, 1);
    header = CleanCellText(first_cell.GetChild(u"Range").Get(u"Text").ToText());
    if (!header.starts_with(u'<') || !header.ends_with(u'>')) continue;
    const Object list = FindListNode(xmlDoc, header);
    if (list && list.GetChild(u"childNodes").Get(u"length").ToLong() > 0) {
      FillListTable(table, list);
    }
  }
}

}  // namespace

void CreateLetterXML(ControlContext& context, XmlDocument& xmlDoc, String& template_,
                     String& strEmailAddress, String& strMailMode, String& strSavePath,
                     String& ReplaceinHeader, String& EmailSubject) {
  String step;
  String temp_path;
  Object word;
  Object document;
  if (!ReadTags(context, xmlDoc, temp_path, step)) return;
  if (!StartWord(context, word,
                 ReportOnly(context,
                            u"An error occurred whilst attempting to open Microsoft Word. Ensure "
                            u"Microsoft Word is available on this machine."))) {
    return;
  }
  // Word stays started but invisible.
  if (template_.empty()) return ReportNoTemplate(context);
  if (!OpenTemplate(
          word, template_, document,
          ReportOnly(context, u"An error occurred whilst attempting to open file '" + template_ +
                                  u"'. Check this file exists, and is in the location "
                                  u"specified."))) {
    return;
  }
  const auto report_tags = [&](const AutomationError& error) {
    ShowMessage(context,
                u"An error occurred attempting to insert the address information into the "
                u"Microsoft Word Document. Check the fields have been added to the document to "
                u"replace. " +
                    step + u" " + error.description());
  };
  if (!ReplaceAllTags(context, document, word, ReplaceinHeader, step, report_tags)) return;

  const auto save_or_show = [&] {
    if (!strSavePath.empty()) SaveOrExport(context, document, strSavePath);
    if (strEmailAddress.empty()) word.Put(u"Visible", true);
  };
  const bool saved = Attempt(
      save_or_show,
      Report(context, u"An error occurred saving a copy of the document in CreateLetterXML:-"));
  if (!saved || strEmailAddress.empty()) return;

  const LetterMail letter{strEmailAddress, strMailMode, EmailSubject, temp_path};
  Attempt([&] { DisplayLetterMail(context, word, document, letter, step); },
          [&](const AutomationError& error) {
            ShowMessage(context, u"An error occurred running Outlook at step " + step +
                                     u". Check that outlook is installed and can be run." +
                                     error.description());
          });
}

void CreateSeminarLetterXML(ControlContext& context, XmlDocument& xmlDoc, String& template_,
                            String& /*strEmailAddress*/, String& /*strMailMode*/,
                            String& strSavePath, String& ReplaceinHeader) {
  String step;
  String header;
  Object word;
  Object document;
  if (!StartWord(context, word, Report(context, u"Error starting word - "))) return;
  if (template_.empty()) return ShowMessage(context, kNoTemplate, kExclamation);
  if (!OpenTemplate(word, template_, document,
                    Report(context, u"Error opening template doc '" + template_ + u"' - "))) {
    return;
  }
  if (!Attempt([&] { ExtractRecordTagData(context, xmlDoc); },
               Report(context, u"Error in template build extracting field tags - "))) {
    return;
  }
  const auto report_tags = [&](const AutomationError& error) {
    ShowMessage(context, u"Error in template build replacing seminar tags (" + step + u") - " +
                             error.description());
  };
  if (!ReplaceAllTags(context, document, word, ReplaceinHeader, step, report_tags)) return;
  const auto report_tables = [&](const AutomationError& error) {
    ShowMessage(context, u"Error in template build checking tables - " + error.description() +
                             u". Last header retrieved " + header);
  };
  if (!Attempt([&] { FillListTables(document, xmlDoc, header); }, report_tables)) return;

  const auto save = [&] {
    if (!strSavePath.empty()) SaveOrExport(context, document, strSavePath);
  };
  const auto report_save = Report(context, u"Error saving document to '" + strSavePath + u"' - ",
                                  u" Please inform your systems administrator");
  Attempt(save, report_save);
  // NOTE: Word is shown after a failed save too, so that the user can save the letter by hand.
  Attempt([&] { word.Put(u"Visible", true); }, report_save);
}

void CreateContactLetter(ControlContext& context, HtmlDocument& /*oHTMLDoc*/,
                         String& /*template_*/) {
  ShowMessage(context, u"This interface has been removed");
}

}  // namespace kestrelon
