#include "documents/ReportPdf.h"

#include <string>
#include <string_view>

#include "Control/ErrorReporting.h"
#include "Control/FileAccess.h"
#include "Control/LocaleAndEnvironment.h"
#include "Control/OfficeConnection.h"
#include "documents/QuoteServices.h"
#include "outlook/Mails.h"
#include "outlook/OutlookConstants.h"

namespace kestrelon {
namespace {

constexpr int32_t kForWriting = 2;
constexpr int32_t kFullSave = 1;
// How often Acrobat is asked whether the document is there, and the milliseconds between: one
// minute in all. Counted, since the clock may be set meanwhile.
constexpr int kMostPauses = 600;
constexpr uint32_t kPause = 100;

// What became of a conversion.
enum ResultCode : int16_t {
  kNotConverted = 0,
  kMailed = 1,
  kNotMailed = 2,
  kPdfNotDeleted = 3,
  kNoAcrobat = 4,
};

// What GenerateEmail is told of a mail, too.
struct ReportMail {
  const String& address;
  const String& subject;
  const String& mail_type;
  const String& address_type;
};

// NOTE: a name without ":" is left as it is: only the time stamps of the CRM's own names are known
// to be in the way.
void CleanTimeStamp(String& unique_name) {
  if (unique_name.find(u':') == String::npos) return;
  std::erase_if(unique_name, [](char16_t unit) {
    return StringView(u"/\\*?<>\":").find(unit) != StringView::npos;
  });
}

// The name as the system takes it for the start of a file name.
std::string TempFilePrefix(const String& unique_name) {
  std::string prefix = ToAnsi(unique_name);
  std::erase_if(prefix, [](unsigned char byte) {
    return byte < ' ' ||
           std::string_view("/\\*?<>\":|").find(static_cast<char>(byte)) != std::string_view::npos;
  });
  return prefix;
}

// A new file in the folder, named after the report and ready for HTML.
Object MakeHtmlFile(ControlContext& context, const String& folder, const String& unique_name) {
  std::string path(kAnsiPathSize, '\0');
  const std::string prefix = TempFilePrefix(unique_name);
  const bool made =
      !folder.empty() && context.platform.GetTempFileNameAnsi(ToAnsi(folder).c_str(),
                                                              prefix.c_str(), 0, path.data()) != 0;
  if (!made) throw AutomationError(kPathNotFound);
  const Object file =
      FileSystemOf(context).CallChild(u"GetFile", FromAnsi(path.substr(0, path.find('\0'))));
  const String name = file.Get(u"Name").ToText();
  file.Put(u"Name", Left(name, static_cast<int64_t>(name.size()) - 3) + u"htm");
  return file;
}

void WriteHtml(const Object& file, const String& html) {
  const Object stream = file.CallChild(u"OpenAsTextStream", kForWriting);
  stream.Call(u"WriteLine", EncodeBeyondAnsi(html));
  stream.Call(u"Close");
}

// Opens the page in Acrobat, which converts it; the document is there from then on.
void OpenInAcrobat(ControlContext& context, const String& html_path) {
  const ObjectState& state = context.state;
  if (!state.acrobat_document.Call(u"open", html_path, u"").ToBoolean()) {
    throw AutomationError(kFileNotFound);
  }
  for (int pauses = 0; state.acrobat_application.Call(u"GetNumAVDocs").ToLong() <= 0; ++pauses) {
    if (pauses == kMostPauses) throw AutomationError(kServerUnavailable);
    context.platform.Pause(kPause);
  }
}

void SaveAsPdf(ControlContext& context, const String& pdf_path) {
  ObjectState& state = context.state;
  state.acrobat_document = state.acrobat_application.CallChild(u"GetActiveDoc");
  if (state.acrobat_document.Call(u"isValid").ToBoolean()) {
    state.acrobat_pd_document = state.acrobat_document.CallChild(u"GetPDDoc");
  } else {
    ShowMessage(context, u"myAdobeDoc is not valid anymore!");
  }
  state.acrobat_pd_document.Call(u"Create");
  if (!state.acrobat_pd_document.Call(u"save", kFullSave, pdf_path).ToBoolean()) {
    ShowMessage(context, u"Unable to save document");
  }
  state.acrobat_pd_document.Call(u"Close");
  state.acrobat_document.Call(u"Close", true);
  state.acrobat_application.Call(u"Exit");
}

bool MailPdfAttachment(ControlContext& context, const String& pdf_path, const ReportMail& report) {
  const auto failed = IgnoreFailures([&] {
    ObjectState& state = context.state;
    state.outlook_application = context.platform.CreateObject(u"Outlook.Application");
    Object& mail = state.current_mail;
    mail = state.outlook_application.CallChild(u"CreateItem", olMailItem);
    mail.GetChild(u"Recipients")
        .Call(u"Add", GetRecipientAddress(report.address, report.address_type, report.mail_type));
    mail.Put(u"Subject", GetMailSubject(report.subject, report.mail_type));
    mail.GetChild(u"Attachments").Call(u"Add", pdf_path);
    mail.Call(u"display");
  });
  CleanUpOutlook(context);
  return !failed;
}

bool DeleteTempFile(ControlContext& context, const String& path) {
  return !IgnoreFailures(
      [&] { FileSystemOf(context).CallChild(u"GetFile", path).Call(u"Delete", true); });
}

void ReleaseAcrobat(ObjectState& state) {
  state.acrobat_pd_document.Release();
  state.acrobat_document.Release();
  state.acrobat_application.Release();
}

ResultCode ConvertHtmlToPdf(ControlContext& context, const String& html_path, const String& folder,
                            const String& unique_name, const ReportMail& report) {
  ObjectState& state = context.state;
  const String pdf_path = folder + unique_name + u".pdf";
  ResultCode failure = kNoAcrobat;
  const auto failed = IgnoreFailures([&] {
    state.acrobat_application = context.platform.CreateObject(u"AcroExch.App");
    state.acrobat_document = context.platform.CreateObject(u"AcroExch.AVDoc");
    failure = kNotConverted;
    OpenInAcrobat(context, html_path);
    SaveAsPdf(context, pdf_path);
  });
  // After a failure, too, and then without asking Acrobat to exit: it may have other work.
  ReleaseAcrobat(state);
  if (failed) return failure;
  if (!MailPdfAttachment(context, pdf_path, report)) return kNotMailed;
  return DeleteTempFile(context, pdf_path) ? kMailed : kPdfNotDeleted;
}

void ReportFailure(ControlContext& context, ResultCode code) {
  if (code == kNoAcrobat) {
    return ShowMessage(
        context,
        u"Adobe Acrobat was not detected on your system and therefore Kestrelon was unable to "
        u"generate a pdf file attachment. Please contact your system administrator",
        kInformation, u"Install Adobe Acrobat");
  }
  const int32_t number = static_cast<int32_t>(0x80040002) + (code == kNotConverted ? 0 : code - 1);
  // NOTE: joined without blanks; the help desk searches for this text as it stands.
  ShowMessage(context,
              u"An error occurred attempting to convert the quote to a PDF file. Error number:" +
                  Value(number).ToText() + u"Please contact your system administrator");
}

}  // namespace

Value CreateHTMforPDF(ControlContext& context, String& theBody, String& theUniqueName,
                      String& address, String& Subject, String& mailType, String& addressType) {
  ResultCode code = kNotConverted;
  Object file;
  IgnoreFailures([&] {
    CleanTimeStamp(theUniqueName);
    const String folder = ReadTempPath(context);
    file = MakeHtmlFile(context, folder, theUniqueName);
    std::erase(theUniqueName, u'#');
    WriteHtml(file, theBody);
    code = ConvertHtmlToPdf(context, folder + file.Get(u"Name").ToText(), folder, theUniqueName,
                            {address, Subject, mailType, addressType});
  });
  if (code != kMailed) {
    ReportFailure(context, code);
  } else {
    // A page left in the temporary folder is no reason to alarm the user, who has the mail.
    IgnoreFailures([&] { file.Call(u"Delete", true); });
  }
  return {};
}

}  // namespace kestrelon
