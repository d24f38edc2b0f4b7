#include "outlook/Import.h"

#include <array>
#include <cstdio>

#include "Control/ErrorReporting.h"
#include "Control/OfficeConnection.h"
#include "outlook/FolderChoice.h"
#include "outlook/OutlookConstants.h"

namespace kestrelon {
namespace {

constexpr StringView kSeparator = u"#~";

// The fields read so far; each ends in the separator.
class ItemRecord {
 public:
  void Add(const String& field) { text_.append(field).append(kSeparator); }
  void AddLast(const String& field) { text_.append(field); }
  void AddProperty(const Object& item, StringView property) { Add(item.Get(property).ToText()); }
  void AddProperties(const Object& item, std::initializer_list<StringView> properties) {
    for (const StringView property : properties) AddProperty(item, property);
  }
  // "0" for False, "1" for anything else.
  void AddFlag(const Object& item, StringView property) {
    Add(item.Get(property).ToBoolean() ? u"1" : u"0");
  }
  const String& text() const { return text_; }

 private:
  String text_;
};

// "2026-03-09 17:05:00": date and time in full, at midnight too.
String FormatDateAndTime(const Value& value) {
  const DateParts parts = TakeApart(value.ToDate());
  char text[40];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", parts.year, parts.month,
                parts.day, parts.hour, parts.minute, parts.second);
  return FromUtf8(text);
}

String FormatMilliseconds(const Value& date) { return FormatDateAndTime(date) + u".000"; }

String FormatDateCompleted(const Value& date) {
  const String text = FormatDateAndTime(date);
  return text == u"4501-01-01 00:00:00" ? String() : text + u".000";
}

using StreetLines = std::array<String, 3>;

// The lines of a street for the CRM, which has three.
// NOTE: commas that the user typed part lines too, and the line feed that followed a carriage
// return stays at the start of its line; the third line has a blank before each of its parts.
StreetLines SplitStreet(const String& street) {
  const String marked = ReplaceAll(street, u"\r", u",");
  if (marked.find(u',') == String::npos) return {street, u"", u""};
  const std::vector<String> parts = Split(marked, u",");
  StreetLines lines{parts[0], parts[1], u""};
  for (size_t i = 2; i < parts.size(); ++i) lines[2] += u" " + parts[i];
  return lines;
}

void AddAddress(ItemRecord& record, const StreetLines& street, const Object& contact,
                std::initializer_list<StringView> properties) {
  for (const String& line : street) record.Add(line);
  record.AddProperties(contact, properties);
}

// The first item with the entry id; Nothing when there is none, whatever `found` held before.
void FindItem(const Object& folder, const String& entry_id, Object& found) {
  found.Release();
  const auto walk = folder.GetChild(u"Items").Enumerate();
  while (const std::optional<Value> element = walk->Next()) {
    const Object item = element->ToObject();
    if (item.Get(u"EntryID").ToText() != entry_id) continue;
    found = item;
    return;
  }
}

Object OpenFolder(ControlContext& context, int32_t default_folder, const String& folder_id) {
  Object& folder = context.state.current_folder;
  folder = context.state.mapi_namespace.CallChild(u"GetDefaultFolder", default_folder);
  if (!folder_id.empty()) {
    folder = context.state.mapi_namespace.CallChild(u"GetFolderFromID", folder_id);
  }
  return folder;
}

void ReadContact(ControlContext& context, const String& folder_id, const String& entry_id,
                 ItemRecord& record, String& step) {
  step = u"Getting Required Folder";
  const Object folder = OpenFolder(context, olFolderContacts, folder_id);
  step = u"Locating contact in folder";
  Object& contact = context.state.current_contact;
  FindItem(folder, entry_id, contact);
  step = u"Retrieving basic details from contact";
  record.AddProperties(
      contact, {u"title", u"FirstName", u"LastName", u"JobTitle", u"Department", u"Email1Address",
                u"BusinessTelephoneNumber", u"BusinessFaxNumber", u"MobileTelephoneNumber"});
  step = u"Retrieving and formatting address info";
  const StreetLines business = SplitStreet(contact.Get(u"businessaddressstreet").ToText());
  const StreetLines home = SplitStreet(contact.Get(u"HomeAddressStreet").ToText());
  step = u"Final formatting of contact information";
  AddAddress(record, business, contact,
             {u"businessaddresscity", u"businessaddresspostalcode", u"businessaddressstate",
              u"businessaddresscountry"});
  AddAddress(
      record, home, contact,
      {u"HomeAddressCity", u"HomeAddressPostalCode", u"HomeAddressState", u"HomeAddressCountry"});
  step = u"Cleaning up Outlook";
}

void ReadTask(ControlContext& context, const String& folder_id, const String& entry_id,
              ItemRecord& record, String& step) {
  step = u"Accessing chosen folder";
  const Object folder = OpenFolder(context, olFolderTasks, folder_id);
  step = u"accessing chosen task";
  Object& task = context.state.current_task;
  FindItem(folder, entry_id, task);
  step = u"Retrieving task information";
  record.AddProperties(task, {u"BillingInformation", u"body"});
  record.AddFlag(task, u"complete");
  record.Add(FormatDateCompleted(task.Get(u"DateCompleted")));
  // NOTE: only the date of completion can be empty; the page knows a task without a due or start
  // date by Outlook's own date for none.
  record.Add(FormatMilliseconds(task.Get(u"DueDate")));
  record.AddProperties(task, {u"Importance", u"PercentComplete", u"Sensitivity"});
  record.Add(FormatMilliseconds(task.Get(u"StartDate")));
  record.AddProperties(task, {u"Status", u"Subject"});
  record.AddFlag(task, u"TeamTask");
  record.AddProperty(task, u"EntryID");
  record.AddLast(folder.Get(u"EntryID").ToText());
  step = u"Cleaning up outlook";
}

// Opens Outlook and has `read` fill a record; after a failure, `failed_text` and the step reached
// are shown.
template <typename Read>
String ImportItem(ControlContext& context, const String& failed_text, const Read& read) {
  ItemRecord record;
  String step;
  if (OpenOutlook(context)) {
    Attempt([&] { read(record, step); },
            [&](const AutomationError& error) {
              ShowMessage(context, failed_text + u"\r\n" + error.description() + u"\r\n" + step);
            });
  }
  CleanUpOutlook(context);
  return record.text();
}

}  // namespace

String ImportContact(ControlContext& context, String& foldername, String& contactname) {
  return ImportItem(context, u"An error occurred running ImportContact.  Further Information:",
                    [&](ItemRecord& record, String& step) {
                      ReadContact(context, foldername, contactname, record, step);
                    });
}

String ImportTask(ControlContext& context, String& foldername, String& taskName) {
  return ImportItem(context, u"An error occurred running ImportTask",
                    [&](ItemRecord& record, String& step) {
                      ReadTask(context, foldername, taskName, record, step);
                    });
}

}  // namespace kestrelon
