#include "outlook/UnsyncedItems.h"

#include "Control/ErrorReporting.h"
#include "Control/OfficeConnection.h"
#include "outlook/FolderChoice.h"
#include "outlook/OutlookConstants.h"

namespace kestrelon {
namespace {

// What one of the lists is about.
struct UnsyncedKind {
  StringView member;
  int32_t default_folder;
  int32_t item_class;
  StringView name_field;
  bool (*is_synced)(const Object& item);
};

// The item's user property as text; "" when it has none of that name.
String UserPropertyOf(const Object& item, StringView name) {
  const Object property = item.GetChild(u"UserProperties").CallChild(u"Find", name);
  return property ? property.Get(u"Value").ToText() : String();
}

bool IsMarked(const Object& item) { return UserPropertyOf(item, u"Kestrelon") == u"true"; }

bool HasContactId(const Object& item) { return !UserPropertyOf(item, u"KESTID").empty(); }

// The id of an imported task, or of an activity that the CRM wrote into Outlook.
bool HasTaskId(const Object& item) {
  return HasContactId(item) || !UserPropertyOf(item, u"USTID").empty();
}

void AppendUnsynced(ControlContext& context, const UnsyncedKind& kind, String& folder_id,
                    String& list) {
  Object& folder = context.state.current_folder;
  folder = ChooseFolder(context, kind.default_folder, folder_id);
  const auto walk = folder.GetChild(u"Items").Enumerate();
  while (const std::optional<Value> element = walk->Next()) {
    const Object item = element->ToObject();
    if (item.Get(u"Class").ToLong() != kind.item_class || kind.is_synced(item)) continue;
    const String name = item.Get(kind.name_field).ToText();
    list += name + u"#~" + item.Get(u"EntryID").ToText() + u"#~";
  }
}

// The pairs built so far when it fails, which a message box tells.
Value ListUnsynced(ControlContext& context, const UnsyncedKind& kind, String& folder_id) {
  String list;
  if (OpenOutlook(context)) {
    Attempt([&] { AppendUnsynced(context, kind, folder_id, list); },
            [&](const AutomationError&) {
              ShowMessage(context, u"An error occurred running " + String(kind.member),
                          kInformation);
            });
  }
  CleanUpOutlook(context);
  return list;
}

}  // namespace

Value GetUnsyncedAppts(ControlContext& context) {
  String default_folder;
  return ListUnsynced(context,
                      {u"GetUnsyncedAppts", olFolderCalendar, olAppointment, u"Subject", &IsMarked},
                      default_folder);
}

Value GetUnsyncedTasks(ControlContext& context) {
  String default_folder;
  return ListUnsynced(context, {u"GetUnsyncedTasks", olFolderTasks, olTask, u"Subject", &HasTaskId},
                      default_folder);
}

Value GetUnsyncedContacts(ControlContext& context, String& foldertosearch) {
  return ListUnsynced(
      context, {u"GetUnsyncedContacts", olFolderContacts, olContact, u"FullName", &HasContactId},
      foldertosearch);
}

}  // namespace kestrelon
