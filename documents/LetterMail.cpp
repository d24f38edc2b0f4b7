#include "documents/LetterMail.h"

#include <cstdio>

#include "Control/FileAccess.h"
#include "Control/OfficeConnection.h"
#include "documents/WordConstants.h"
#include "outlook/OutlookConstants.h"

namespace kestrelon {
namespace {

// Minutes and seconds, always of a 24-hour clock: "05_09".
String MinuteStamp(ControlContext& context) {
  const DateParts now = TakeApart(context.platform.Now());
  char stamp[16];
  std::snprintf(stamp, sizeof stamp, "%02d_%02d", now.minute, now.second);
  return FromUtf8(stamp);
}

void CloseAndQuit(const Object& wordApp, const Object& document) {
  document.Call(u"Close");
  wordApp.Call(u"Quit", wdDoNotSaveChanges);
}

}  // namespace

void DisplayLetterMail(ControlContext& context, const Object& wordApp, const Object& document,
                       const LetterMail& letter, String& step) {
  step = u"1: Instantiating Outlook";
  Object& outlook = context.state.outlook_application;
  outlook = context.platform.CreateObject(u"Outlook.Application");
  const Object mail = outlook.CallChild(u"CreateItem", olMailItem);
  mail.GetChild(u"Recipients").Call(u"Add", letter.address);
  mail.Put(u"Subject", letter.subject);
  String file;
  if (letter.mode != u"HTML") {
    file = letter.temp_path + u"Attachment.Doc";
    document.Call(u"SaveAs", file);
    CloseAndQuit(wordApp, document);
    step = u"2: Adding attachments";
    mail.GetChild(u"Attachments").Call(u"Add", file);
  } else {
    step = u"3:Generating html file from word document";
    file = letter.temp_path + u"Letter" + MinuteStamp(context) + u".htm";
    document.Call(u"SaveAs", Named(u"FileName", file), Named(u"FileFormat", wdFormatHTML));
    CloseAndQuit(wordApp, document);
    mail.Put(u"HTMLBody", ReadTextFile(context, file));
  }
  step = u"4: Displaying outlook";
  mail.Call(u"display");
  CleanUpOutlook(context);
  IgnoreFailures([&] {
    context.platform.CreateObject(u"Scripting.FileSystemObject").Call(u"DeleteFile", file, true);
  });
}

}  // namespace kestrelon
