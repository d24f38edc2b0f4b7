#include "documents/Quotes.h"

#include <algorithm>

#include "Control/ErrorReporting.h"
#include "Control/FileAccess.h"
#include "Control/LocaleAndEnvironment.h"
#include "Control/OfficeConnection.h"
#include "documents/PdfExport.h"
#include "documents/QuoteBuilder.h"
#include "documents/QuoteServices.h"
#include "documents/WordConstants.h"
#include "outlook/Mails.h"
#include "outlook/OutlookConstants.h"

namespace kestrelon {
namespace {

constexpr const char16_t* kTitle = u"Kestrelon";

// What a quote is about, for the message when that fails.
struct Stage {
  enum Kind { kOther, kTags, kSaving } kind = kOther;
  String path = {};  // of kSaving
};

void ReportFailure(ControlContext& context, const Stage& stage) {
  switch (stage.kind) {
    case Stage::kTags:
      return ShowMessage(
          context,
          u"An error occurred attempting to insert the address information in the Microsoft Word "
          u"Document. Check the fields have been added to the document to replace.",
          kOkOnly, kTitle);
    case Stage::kSaving:
      return ShowMessage(context,
                         u"The document could not be saved to '" + stage.path +
                             u"'.   Please inform your systems administrator",
                         kOkOnly, kTitle);
    case Stage::kOther:
      return ShowMessage(context,
                         u"An error has occurred creating a Quote in Microsoft Word. An unknown "
                         u"error has occurred please contact your System Administrator",
                         kOkOnly, u"Quote generation failed");
  }
}

// A Word that is at work on one quote.
class QuoteInWord {
 public:
  QuoteInWord(ControlContext& context, Object word) : context_(context), word_(std::move(word)) {}

  void Show() { word_.Put(u"Visible", true); }

  // False when the builder has failed and told so.
  bool Fill(const Object& xmlDoc, const String& strTemplate, const String& strReplaceinheader) {
    document_ = word_.GetChild(u"Documents").CallChild(u"Add", strTemplate);
    // The tags are looked for from the selection on.
    stage_ = {Stage::kTags};
    document_.Call(u"Select");
    const bool is_built =
        BuildQuoteDocument(context_, xmlDoc, word_, document_, strTemplate, strReplaceinheader);
    stage_ = {};
    return is_built;
  }

  // `save` writes the document to `path`.
  template <typename Save>
  void SaveTo(const String& path, const Save& save) {
    stage_ = {Stage::kSaving, path};
    save(document_);
    stage_ = {};
  }

  void CloseAndQuit() {
    document_.Call(u"Close");
    word_.Call(u"Quit");
  }

  // Runs the whole of it; false after a failure, which is told, and Word quits.
  template <typename Work>
  bool Run(const Work& work) {
    return Attempt(work, [&](const AutomationError&) {
      ReportFailure(context_, stage_);
      IgnoreFailures([&] { word_.Call(u"Quit"); });
    });
  }

 private:
  ControlContext& context_;
  Object word_;
  Object document_;
  Stage stage_;
};

// Where the document that a mail carries is put, still without its extension.
String TemporaryBase(ControlContext& context, const String& strQuoteFileName,
                     const String& strTemplate) {
  String name = strQuoteFileName;
  if (name.empty()) {
    name = GetFileNameFromPath(strTemplate);
    name = name.substr(0, name.rfind(u'.'));
  } else {
    MakeSafeFileName(name);
    // Quote numbers have slashes, which would lead to other folders: what is there would be
    // replaced and then deleted as if it were temporary.
    std::replace_if(
        name.begin(), name.end(), [](char16_t c) { return c == u'/' || c == u'\\'; }, u'_');
  }
  return GetTheTempPath(context) + name;
}

// Saves the document as the mail is to carry it. `file` is set before it is written.
void PutIntoMail(ControlContext& context, QuoteInWord& quote, const Object& mail,
                 const String& mail_type, const String& base, String& file) {
  const auto save_as = [&](StringView extension) {
    file = base + String(extension);
    quote.SaveTo(file, [&](const Object& document) { document.Call(u"SaveAs", file); });
  };
  const auto save_as_html = [&] {
    file = base + u".htm";
    quote.SaveTo(file, [&](const Object& document) {
      document.Call(u"SaveAs", Named(u"FileName", file), Named(u"FileFormat", wdFormatHTML));
    });
  };
  const auto export_or_save = [&] {
    file = base + u".pdf";
    bool is_exported = false;
    quote.SaveTo(file,
                 [&](const Object& document) { is_exported = ExportPdf(context, document, file); });
    if (is_exported) return;
    ShowMessage(context, u"Unable to write as PDF.  Will be written as doc instead", kInformation,
                kTitle);
    save_as(u".doc");
  };
  if (mail_type == u"attach") {
    save_as(u".doc");
  } else if (mail_type == u"attachpdf") {
    export_or_save();
  } else {
    save_as_html();
    if (mail_type != u"attachhtml") return mail.Put(u"HTMLBody", ReadTextFile(context, file));
  }
  mail.GetChild(u"Attachments").Call(u"Add", file);
}

void SaveCopy(ControlContext& context, QuoteInWord& quote, const String& path) {
  if (path.empty()) return;
  quote.SaveTo(path, [&](const Object& document) {
    if (!IsPdfPath(path)) {
      document.Call(u"SaveAs", path);
    } else if (!ExportPdf(context, document, path)) {
      ShowMessage(context,
                  u"Unable to save document as PDf format.  PDF save requires Word 2007 or above "
                  u"with the appropriate Microsoft add-in",
                  kExclamation, kTitle);
    }
  });
}

String ResultWord(bool is_done) { return is_done ? u"success" : u""; }

}  // namespace

String WordQuote(ControlContext& context, XmlDocument& xmlDoc, String& strTemplate,
                 String& strSavePath, String& strMakeWordVisible, String& strReplaceinheader) {
  const Object word = StartWord(context);
  if (!word) return ResultWord(false);
  QuoteInWord quote(context, word);
  bool is_done = false;
  quote.Run([&] {
    if (strMakeWordVisible == u"true") quote.Show();
    if (!quote.Fill(xmlDoc, strTemplate, strReplaceinheader)) return;
    if (!strSavePath.empty()) {
      quote.SaveTo(strSavePath,
                   [&](const Object& document) { SaveOrExport(context, document, strSavePath); });
    }
    quote.Show();
    is_done = true;
  });
  return ResultWord(is_done);
}

String WordQuoteHtml(ControlContext& context, XmlDocument& xmlDoc, String& address, String& Subject,
                     String& mailType, String& addressType, String& strTemplate,
                     String& /*strFormat*/, String& strSavePath, String& strReplaceinheader,
                     String& strMakeWordVisible, String& strQuoteFileName) {
  const Object word = StartWord(context);
  if (!word) return ResultWord(false);
  QuoteInWord quote(context, word);
  String file;
  bool is_done = false;
  const bool ran = quote.Run([&] {
    // NOTE: "1", where the other flags of the interface say "true"; pages send it so.
    if (strMakeWordVisible == u"1") quote.Show();
    if (!quote.Fill(xmlDoc, strTemplate, strReplaceinheader)) return;
    Object& outlook = context.state.outlook_application;
    outlook = context.platform.CreateObject(u"Outlook.Application");
    const Object mail = outlook.CallChild(u"CreateItem", olMailItem);
    mail.GetChild(u"Recipients").Call(u"Add", GetRecipientAddress(address, addressType, mailType));
    mail.Put(u"Subject", GetMailSubject(Subject, mailType));
    const String base = TemporaryBase(context, strQuoteFileName, strTemplate);
    PutIntoMail(context, quote, mail, LowerCase(mailType), base, file);
    mail.Call(u"display");
    CleanUpOutlook(context);
    SaveCopy(context, quote, strSavePath);
    quote.CloseAndQuit();
    is_done = true;
  });
  if (!ran) CleanUpOutlook(context);
  // A page may save to the very place of the temporary file.
  if (!file.empty() && !EqualIgnoringCase(file, strSavePath)) DeleteFileQuietly(context, file);
  return ResultWord(is_done);
}

}  // namespace kestrelon
