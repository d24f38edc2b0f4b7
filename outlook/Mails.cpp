#include "outlook/Mails.h"

#include "Control/ErrorReporting.h"
#include "Control/OfficeConnection.h"
#include "outlook/OutlookConstants.h"

namespace kestrelon {
namespace {

constexpr uint32_t kVersionRecordSize = 148;
constexpr uint8_t kAltKey = 18;
constexpr uint8_t kPrintScreenKey = 44;
constexpr uint32_t kKeyUp = 2;

constexpr StringView kLineBreak = u"\r\n";
constexpr StringView kHtmlLineBreak = u"<br>";

// Puts a picture of the screen on the clipboard, for the user to paste into the mail.
void CaptureScreen(ControlContext& context) {
  ObjectState& state = context.state;
  Platform& platform = context.platform;
  state.os_version.size = kVersionRecordSize;
  state.os_version_result = static_cast<int16_t>(platform.GetOsVersion(state.os_version));
  if (state.os_version.major_version > 4) state.is_newer_system = true;
  if (state.is_newer_system) {
    platform.SendKeyEvent(kPrintScreenKey, 1, 0, 0);
    return;
  }
  platform.SendKeyEvent(kAltKey, 0, 0, 0);
  platform.SendKeyEvent(kPrintScreenKey, 0, 0, 0);
  platform.SendKeyEvent(kPrintScreenKey, 0, kKeyUp, 0);
  platform.SendKeyEvent(kAltKey, 0, kKeyUp, 0);
}

// Starts Outlook; a new mail in it.
Object CreateMail(ControlContext& context) {
  Object& application = context.state.outlook_application;
  application = context.platform.CreateObject(u"Outlook.Application");
  return application.CallChild(u"CreateItem", olMailItem);
}

void ReportUnsentMail(ControlContext& context, const AutomationError& error,
                      const String& mail_type) {
  // NOTE: only an Outlook that is missing is told of in the words of the mail's own type.
  const bool is_quote = mail_type == u"Quote" || error.number() != kCannotCreateObject;
  const String kind = is_quote ? u"quote" : u"report";
  ShowMessage(context,
              u"Unable to send this " + kind +
                  u". Ensure Microsoft Outlook is available and configured for your use.",
              kInformation, u"Unable to send " + kind);
}

// True when `compose` runs through; Outlook is let go of either way.
template <typename Compose>
bool RunSilently(ControlContext& context, const Compose& compose) {
  const auto failed = IgnoreFailures(compose);
  CleanUpOutlook(context);
  return !failed;
}

// The original of a reply or forward.
struct OriginalMail {
  const String& from;
  const String& sent;
  const String& to;
  const String& subject;
  const String& body;
};

// NOTE: no blank after the colons; the CRM finds the parts of its own mails by these labels.
String QuoteOriginal(const OriginalMail& original, StringView line_break) {
  String text = u"-----Original Message-----";
  text.append(line_break);
  text.append(u"From:" + original.from).append(line_break);
  text.append(u"Sent:" + original.sent).append(line_break);
  text.append(u"To:" + original.to).append(line_break);
  text.append(u"Subject:" + original.subject).append(line_break).append(line_break);
  return text + original.body;
}

void WriteReply(const Object& mail, const OriginalMail& original) {
  // NOTE: a forwarded mail is led by "RE: " too.
  mail.Put(u"Subject", u"RE: " + original.subject);
  if (UpperCase(original.body).find(u"HTML") != String::npos) {
    mail.Put(u"HTMLBody", String(kHtmlLineBreak) + QuoteOriginal(original, kHtmlLineBreak));
  } else {
    const String room = String(kLineBreak) + String(kLineBreak);
    mail.Put(u"body", room + QuoteOriginal(original, kLineBreak));
  }
}

}  // namespace

Value GenerateEmail(ControlContext& context, String& bodyhtml, String& address, String& Subject,
                    String& mailType, String& addressType) {
  Attempt(
      [&] {
        CaptureScreen(context);
        Object& mail = context.state.current_mail;
        mail = CreateMail(context);
        mail.GetChild(u"Recipients")
            .Call(u"Add", GetRecipientAddress(address, addressType, mailType));
        mail.Put(u"Subject", GetMailSubject(Subject, mailType));
        mail.Put(u"HTMLBody", bodyhtml);
        mail.Call(u"display");
      },
      [&](const AutomationError& error) { ReportUnsentMail(context, error, mailType); });
  CleanUpOutlook(context);
  return {};
}

bool SendEmail(ControlContext& context, String& strAddress) {
  return RunSilently(context, [&] {
    const Object mail = CreateMail(context);
    // The page's script escapes apostrophes.
    strAddress = ReplaceAll(strAddress, u"\\'", u"'");
    mail.Put(u"To", strAddress);
    mail.Call(u"display");
  });
}

bool SendEmailFull(ControlContext& context, String& strAddress, String& /*strFrom*/,
                   String& /*strSent*/, String& /*strTo*/, String& strSubject, String& strBody) {
  return RunSilently(context, [&] {
    const Object mail = CreateMail(context);
    mail.Put(u"To", strAddress);
    mail.Put(u"Subject", strSubject);
    mail.Put(u"body", strBody);
    mail.Call(u"display");
  });
}

bool SendEmailWithOriginal(ControlContext& context, String& strAddress, String& strFrom,
                           String& strSent, String& strTo, String& strSubject, String& strBody) {
  return RunSilently(context, [&] {
    const Object mail = CreateMail(context);
    mail.Put(u"To", strAddress);
    WriteReply(mail, {strFrom, strSent, strTo, strSubject, strBody});
    mail.Call(u"display");
  });
}

bool ForwardEmailWithOriginal(ControlContext& context, String& strAddress, String& strFrom,
                              String& strSent, String& strTo, String& strSubject, String& strBody) {
  return RunSilently(context, [&] {
    const Object mail = CreateMail(context);
    WriteReply(mail, {strFrom, strSent, strTo, strSubject, strBody});
    mail.Call(u"display");
    mail.Put(u"To", strAddress);
  });
}

bool CheckForFolder(ControlContext& context, Value& foldername) {
  return RunSilently(context, [&] {
    ObjectState& state = context.state;
    state.outlook_application = context.platform.CreateObject(u"Outlook.Application");
    state.mapi_namespace = state.outlook_application.CallChild(u"GetNamespace", u"MAPI");
    const Object folders =
        state.mapi_namespace.CallChild(u"GetDefaultFolder", olFolderContacts).GetChild(u"Folders");
    const String name = foldername.ToText();
    bool is_found = false;
    const auto walk = folders.Enumerate();
    while (const std::optional<Value> folder = walk->Next()) {
      if (folder->ToObject().Get(u"Name").ToText() == name) is_found = true;
    }
    if (!is_found) folders.Call(u"Add", name, olFolderContacts);
  });
}

String GetRecipientAddress(const String& address, const String& address_type,
                           const String& mail_type) {
  if (!address.empty() && address != u"null") return address;
  const String kind = address_type == u"Fax" ? u"FAX" : u"E-MAIL";
  const String subject = mail_type == u"Quote" ? u"QUOTE" : u"REPORT";
  return u"ENTER THE " + kind + u" ADDRESS OF THE RECIPIENT OF THE " + subject + u" HERE";
}

String GetMailSubject(const String& subject, const String& mail_type) {
  if (subject.empty()) return u"";
  return (mail_type == u"Quote" ? u"Quote: " : u"Report on: ") + subject;
}

}  // namespace kestrelon
