#include "outlook/Appointments.h"

#include "Control/ErrorReporting.h"
#include "Control/OfficeConnection.h"
#include "outlook/MapiErrors.h"
#include "outlook/OutlookConstants.h"

namespace kestrelon {
namespace {

constexpr int16_t kNewAppointmentCode = 7;
constexpr int16_t kOpenTaskCode = 8;
constexpr int16_t kOpenAppointmentCode = 9;

// What a page tells of the account that an appointment is made for.
struct AccountDetails {
  String account_id;
  String guid;
  String location;
  String subject;
};

AccountDetails ParseAccountInfo(const String& account_info) {
  AccountDetails details;
  for (const String& piece : Split(account_info, u"\u00AC")) {
    const std::vector<String> parts = Split(piece, u"=");
    // An empty piece has no parts and empties the account id.
    if (parts.size() < 2) {
      details.account_id = piece;
      continue;
    }
    const String key = LowerCase(parts[0]);
    if (key == u"ac_id") details.account_id = parts[1];
    if (key == u"guid") details.guid = parts[1];
    if (key == u"location") details.location = parts[1];
    if (key == u"subject") details.subject = parts[1];
  }
  return details;
}

void CreateAppointment(ControlContext& context, StringView server) {
  ObjectState& state = context.state;
  state.outlook_application = context.platform.CreateObject(u"Outlook.Application", server);
  state.current_appointment = state.outlook_application.CallChild(u"CreateItem", olAppointmentItem);
}

Object AddProperty(const Object& item, StringView name) {
  return item.GetChild(u"UserProperties").CallChild(u"Add", name, olText, true);
}

void FillAndDisplay(const Object& appointment, const AccountDetails& details, const String& link) {
  appointment.Put(u"Body", link);
  if (!details.subject.empty()) appointment.Put(u"Subject", details.subject);
  if (!details.location.empty()) appointment.Put(u"Location", details.location);
  const Object account_property = AddProperty(appointment, u"ACID");
  const Object mark_property = AddProperty(appointment, u"Kestrelon");
  const Object guid_property = AddProperty(appointment, u"guid");
  if (!details.guid.empty()) guid_property.PutDefault(details.guid);
  account_property.PutDefault(details.account_id);
  mark_property.PutDefault(u"true");
  appointment.Call(u"Display");
}

// The result word of a member that failed with `error`.
String ResultOf(const AutomationError& error, const String& step_text, int16_t method_code) {
  std::optional<AutomationError> pending = error;
  return GetOutlookErrorResult(pending, step_text, method_code);
}

// Stamps the item that is selected in Outlook; empty when it is not exactly one.
Value StampSelectedAppointment(ControlContext& context, const Value& account_id, String& step) {
  ObjectState& state = context.state;
  step = u"getting Outlook Application";
  state.outlook_application = context.platform.GetRunningObject(u"Outlook.Application");
  step = u"getting MAPI Namespace";
  state.mapi_namespace = state.outlook_application.CallChild(u"GetNamespace", u"MAPI");
  step = u"getting Selected Item";
  const Object selection =
      state.outlook_application.GetChild(u"ActiveExplorer").GetChild(u"selection");
  step = u"checking Item Count";
  const int32_t count = selection.Get(u"count").ToLong();
  if (count > 1) {
    ShowMessage(context,
                u"You cannot add more than 1 item at a time. Please select 1 item only and try "
                u"again.",
                kOkOnly, u"Kestrelon");
    return {};
  }
  if (count < 1) {
    ShowMessage(context, u"Please select an item to add", kInformation, u"Select an item");
    return {};
  }
  // Read only to prove that the item is stored in Outlook.
  step = u"getting Entry ID";
  const Object item = selection.CallChild(u"item", 1);
  item.Get(u"EntryID");
  step = u"getting Store ID";
  item.GetChild(u"Parent").Get(u"StoreID");
  step = u"adding ACID parameter";
  const Object account_property = AddProperty(item, u"ACID");
  step = u"adding Kestrelon parameter";
  const Object mark_property = AddProperty(item, u"Kestrelon");
  step = u"adding guid parameter";
  const Object guid_property = AddProperty(item, u"guid");
  step = u"setting ACID parameter";
  account_property.PutDefault(account_id);
  // NOTE: the guid is set under the same step: what users report names no other.
  step = u"setting Kestrelon parameter";
  mark_property.PutDefault(u"true");
  guid_property.PutDefault(NewGuidString(context));
  step = u"saving item";
  item.Call(u"save");
  ShowMessage(context,
              u"Appointment was synchronised with Kestrelon. Please wait until next mail scan.",
              kOkOnly, u"Kestrelon");
  return u"success";
}

// The default folder and its store become the current ones.
void OpenDefaultFolder(ObjectState& state, int32_t folder) {
  state.mapi_namespace = state.outlook_application.CallChild(u"GetNamespace", u"MAPI");
  state.current_folder = state.mapi_namespace.CallChild(u"GetDefaultFolder", folder);
  state.remembered_store_id = state.current_folder.Get(u"StoreID").ToText();
}

String OpenOwnAppointment(ControlContext& context, const String& entry_id) {
  ObjectState& state = context.state;
  OpenDefaultFolder(state, olFolderCalendar);
  String result;
  const bool is_found = Attempt(
      [&] {
        state.current_appointment =
            state.mapi_namespace.CallChild(u"GetItemFromID", entry_id, state.remembered_store_id);
      },
      [&](const AutomationError& error) { result = DescribeMapiError(error); });
  if (is_found) state.current_appointment.Call(u"Display");
  return result;
}

// True when an item of the folder has the entry id; it becomes the current appointment.
bool FindAppointment(ObjectState& state, const String& entry_id) {
  const auto walk = state.current_folder.GetChild(u"Items").Enumerate();
  while (const std::optional<Value> item = walk->Next()) {
    state.current_appointment = item->ToObject();
    if (state.current_appointment.Get(u"EntryID").ToText() == entry_id) return true;
  }
  return false;
}

// `address` is USER@ENTRYID.
String OpenSharedAppointment(ControlContext& context, const String& address) {
  ObjectState& state = context.state;
  const std::vector<String> parts = Split(address, u"@");
  if (parts.size() != 2) return u"Bad parameter string";
  const String& user = parts[0];
  state.mapi_namespace = state.outlook_application.CallChild(u"GetNamespace", u"MAPI");
  Object& recipient = state.shared_mailbox_recipient;
  recipient = state.mapi_namespace.CallChild(u"CreateRecipient", user);
  recipient.Call(u"Resolve");
  if (!recipient.Get(u"Resolved").ToBoolean()) return u"Unable to access user '" + user + u"'";
  state.current_folder =
      state.mapi_namespace.CallChild(u"GetSharedDefaultFolder", recipient, olFolderCalendar);
  if (!FindAppointment(state, parts[1])) {
    return u"Appointment ID not found in calendar for '" + user + u"'";
  }
  state.current_appointment.Call(u"Display");
  return u"";
}

String FindAndDisplayTask(ControlContext& context, const String& entry_id) {
  ObjectState& state = context.state;
  auto failed = IgnoreFailures([&] {
    state.outlook_application = context.platform.CreateObject(u"Outlook.Application");
    OpenDefaultFolder(state, olFolderTasks);
  });
  if (failed) return u"NoOutlook";
  failed = IgnoreFailures([&] {
    state.current_task =
        state.mapi_namespace.CallChild(u"GetItemFromID", entry_id, state.remembered_store_id);
  });
  if (failed) {
    return failed->number() == kMapiNotFound ? u"The task cannot be found, it may have been deleted"
                                             : u"This task does not belong to you";
  }
  failed = IgnoreFailures([&] { state.current_task.Call(u"Display"); });
  return failed ? ResultOf(*failed, u"opening a Task", kOpenTaskCode) : u"";
}

String FindAndDisplayAppointment(ControlContext& context, const String& address) {
  auto failed = IgnoreFailures([&] {
    context.state.outlook_application = context.platform.CreateObject(u"Outlook.Application");
  });
  if (failed) return u"NoOutlook";
  String result;
  failed = IgnoreFailures([&] {
    const bool is_shared = address.find(u'@') != String::npos;
    result =
        is_shared ? OpenSharedAppointment(context, address) : OpenOwnAppointment(context, address);
  });
  return failed ? ResultOf(*failed, u"opening an Appointment", kOpenAppointmentCode) : result;
}

}  // namespace

String NewAppointment(ControlContext& context, String& AccountInfo, String& ServerName,
                      String& VirtualDirectory, bool& SecureMode) {
  const AccountDetails details = ParseAccountInfo(AccountInfo);
  const String link = (SecureMode ? u"https://" : u"http://") + ServerName + u"/" +
                      VirtualDirectory + u"/Kestrelon.ASPX?Page=Account&ItemID=" +
                      details.account_id;
  String result;
  const auto report = [&](const AutomationError& error) {
    result = ResultOf(error, u"creating an Appointment", kNewAppointmentCode);
  };
  const auto fill = [&] { FillAndDisplay(context.state.current_appointment, details, link); };
  const auto failed = IgnoreFailures([&] { CreateAppointment(context, u""); });
  if (!failed) {
    Attempt(fill, report);
  } else if (Attempt([&] { CreateAppointment(context, u"127.0.0.1"); }, report)) {
    // NOTE: an Outlook that had to be reached through the loopback address leaves the page to deal
    // with what fails from here on; it knows the error better than the word that stands for it.
    try {
      fill();
    } catch (const AutomationError&) {
      CleanUpOutlook(context);
      throw;
    }
  }
  CleanUpOutlook(context);
  return result;
}

Value AddAppointment(ControlContext& context, Value& acid) {
  Value result;
  String step;
  Attempt([&] { result = StampSelectedAppointment(context, acid, step); },
          [&](const AutomationError& error) {
            result = u"An error occured whilst " + step + u": " + error.description();
            CleanUpOutlook(context);
          });
  return result;
}

String OpenTask(ControlContext& context, String& TaskID) {
  const String result = FindAndDisplayTask(context, TaskID);
  CleanUpOutlook(context);
  return result;
}

String OpenAppointment(ControlContext& context, String& AppointmentID) {
  const String result = FindAndDisplayAppointment(context, AppointmentID);
  CleanUpOutlook(context);
  return result;
}

String NewGuidString(ControlContext& context) {
  const std::optional<String> guid = context.platform.CreateGuid();
  if (!guid) return u"";
  return guid->starts_with(u'{') ? guid->substr(1, 36) : *guid;
}

}  // namespace kestrelon
