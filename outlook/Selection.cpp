#include "outlook/Selection.h"

#include "Control/ErrorReporting.h"
#include "Control/OfficeConnection.h"

namespace kestrelon {
namespace {

constexpr int32_t kMostItems = 10;

// Takes the text built so far and the next item.
using AppendItem = void (*)(String& text, const Object& item);

void AppendIds(String& text, const Object& item) {
  if (!text.empty()) text += u",";
  text += item.Get(u"EntryID").ToText() + u",";
  text += item.GetChild(u"Parent").Get(u"StoreID").ToText();
}

void AppendFields(String& text, const Object& item) {
  if (!text.empty()) text += u"\\\\";
  text += item.Get(u"EntryID").ToText() + u"\\";
  text += item.GetChild(u"Parent").Get(u"StoreID").ToText() + u"\\";
  for (const StringView field : {u"Subject", u"SenderName", u"To"}) {
    text += item.Get(field).ToText() + u"\\";
  }
}

String CaptureItems(ControlContext& context, AppendItem append_item) {
  Object& application = context.state.outlook_application;
  context.state.mapi_namespace = application.CallChild(u"GetNamespace", u"MAPI");
  const Object selection = application.GetChild(u"ActiveExplorer").GetChild(u"selection");
  const int32_t count = selection.Get(u"count").ToLong();
  String text;
  if (count > kMostItems) {
    ShowMessage(context,
                u"You cannot add more than 10 items at a time. Please select 10 items or less and "
                u"try again.",
                kOkOnly, u"Kestrelon");
  } else if (count == 0) {
    ShowMessage(context, u"Please select an item to add", kInformation, u"Select an item");
  } else {
    for (int32_t i = 1; i <= count; ++i) append_item(text, selection.CallChild(u"item", i));
  }
  CleanUpOutlook(context);
  return text;
}

String ReportNotRunning(ControlContext& context) {
  // NOTE: Outlook is started and the user told that it is missing all the same: the selection of
  // an Outlook that has only just come up is not what the user meant to add.
  IgnoreFailures([&] {
    context.state.outlook_application = context.platform.CreateObject(u"Outlook.Application");
  });
  CleanUpOutlook(context);
  ShowMessage(context,
              u"Unable to add the e-mail as Microsoft Outlook does not appear to be installed. "
              u"Please check that Microsoft Outlook is installed on this machine and configured "
              u"for your use.",
              kInformation, u"Unable to add email");
  return u"No Outlook";
}

String CaptureSelection(ControlContext& context, AppendItem append_item) {
  const auto error = IgnoreFailures([&] {
    context.state.outlook_application = context.platform.GetRunningObject(u"Outlook.Application");
  });
  if (error && error->number() == kCannotCreateObject) return ReportNotRunning(context);
  // Any other failure is told here, and again below unless a member before this one kept Outlook.
  if (error) ShowMessage(context, error->description());
  String text;
  Attempt([&] { text = CaptureItems(context, append_item); },
          [&](const AutomationError&) {
            CleanUpOutlook(context);
            ShowMessage(context,
                        u"Error encountered. Please select the emails in Outlook and switch "
                        u"directly to the Kestrelon Emails screen to perform the Add function",
                        kInformation, u"Unable to add e-mail");
            text = u"No Outlook";
          });
  return text;
}

}  // namespace

String GetOutlookSelection(ControlContext& context) {
  return CaptureSelection(context, &AppendIds);
}

String GetOutlookSelectionString(ControlContext& context) {
  return CaptureSelection(context, &AppendFields);
}

}  // namespace kestrelon
