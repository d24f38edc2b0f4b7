#include "outlook/Stamps.h"

#include <algorithm>
#include <array>

#include "Control/ErrorReporting.h"
#include "Control/OfficeConnection.h"
#include "outlook/OutlookConstants.h"

namespace kestrelon {
namespace {

constexpr std::array<StringView, 6> kActivityTypes = {
    u"activity",       u"task", u"accountactivity", u"contactactivity", u"opportunityactivity",
    u"projectactivity"};

// Stamps the item that `item` of the object state is to hold.
void StampImported(ControlContext& context, Object& item, const String& entry_id,
                   const String& crm_id) {
  item = context.state.mapi_namespace.CallChild(u"GetItemFromID", entry_id);
  // NOTE: unlike the stamps below, added without a look for one that is there: what becomes of a
  // second import of the same item is Outlook's to say.
  context.state.user_properties =
      item.GetChild(u"UserProperties").CallChild(u"Add", u"KESTID", olText);
  context.state.user_properties.Put(u"Value", crm_id);
  item.Call(u"save");
}

void SetStamp(const Object& item, StringView name, const String& value) {
  const Object properties = item.GetChild(u"UserProperties");
  Object property = properties.CallChild(u"Find", name);
  if (!property) property = properties.CallChild(u"Add", name, olText, true);
  property.Put(u"Value", value);
}

void SetStampsOfType(const Object& item, const String& item_type, const String& account_id,
                     const String& item_id) {
  if (item_type == u"appointment") {
    SetStamp(item, u"guid", item_id);
    SetStamp(item, u"ACID", account_id);
  } else if (std::count(kActivityTypes.begin(), kActivityTypes.end(), item_type) != 0) {
    SetStamp(item, u"USTID", item_id.starts_with(u'{') ? item_id : u"{" + item_id + u"}");
  } else if (item_type == u"contact") {
    SetStamp(item, u"KESTID", item_id);
  }
}

// Starts Outlook, through the loopback address of this machine where that does not work directly.
void StartOutlook(ControlContext& context) {
  Object& application = context.state.outlook_application;
  const auto failed =
      IgnoreFailures([&] { application = context.platform.CreateObject(u"Outlook.Application"); });
  if (failed) application = context.platform.CreateObject(u"Outlook.Application", u"127.0.0.1");
}

// Where CheckIfSynchronised looks for items of one type, and what it tells of them.
struct SearchedItems {
  int32_t default_folder;
  int32_t item_type;
  StringView display_field;
  StringView suffix;
  Object& current_item;
};

// Sets `found` to the display field and `suffix` of the last item that carries the id.
void FindStampedItem(const Object& folder, const SearchedItems& searched, const String& crm_id,
                     const String& suffix, String& found) {
  const Object items = folder.GetChild(u"Items");
  const int32_t count = items.Get(u"count").ToLong();
  for (int32_t i = 1; i <= count; ++i) {
    Object& item = searched.current_item;
    item = items.CallChild(u"item", i);
    const Object property = item.GetChild(u"UserProperties").CallChild(u"Find", u"KESTID");
    if (!property || property.Get(u"Value").ToText() != crm_id) continue;
    found = item.Get(searched.display_field).ToText() + suffix;
  }
}

String FindSynchronisedItem(ControlContext& context, const SearchedItems& searched,
                            const String& crm_id) {
  ObjectState& state = context.state;
  String found = u"false";
  state.outlook_application = context.platform.CreateObject(u"Outlook.Application");
  state.mapi_namespace = state.outlook_application.CallChild(u"GetNamespace", u"MAPI");
  const Object top = state.mapi_namespace.CallChild(u"GetDefaultFolder", searched.default_folder);
  FindStampedItem(top, searched, crm_id, String(searched.suffix), found);
  if (found != u"false") return found;
  const Object folders = top.GetChild(u"Folders");
  const int32_t count = folders.Get(u"count").ToLong();
  for (int32_t i = 1; i <= count; ++i) {
    const Object folder = folders.CallChild(u"item", i);
    if (folder.Get(u"DefaultItemType").ToLong() != searched.item_type) continue;
    // NOTE: no full stop, unlike that of the top folder: pages tell the two apart by it.
    FindStampedItem(folder, searched, crm_id, u" in folder " + folder.Get(u"Name").ToText(), found);
  }
  return found;
}

}  // namespace

String SetImportID(ControlContext& context, String& strItemID, String& strEntryID,
                   String& strItemType) {
  ObjectState& state = context.state;
  const bool done = Attempt(
      [&] {
        state.outlook_application = context.platform.CreateObject(u"Outlook.Application");
        state.mapi_namespace = state.outlook_application.CallChild(u"GetNamespace", u"MAPI");
        const String type = LowerCase(strItemType);
        if (type == u"contact") {
          StampImported(context, state.current_contact, strEntryID, strItemID);
        } else if (type == u"task") {
          StampImported(context, state.current_task, strEntryID, strItemID);
        }
      },
      [](const AutomationError&) {});
  CleanUpOutlook(context);
  if (done) return u"";
  return u"An error occurred setting the item id for the Outlook item. Please contact your system "
         u"administrator";
}

bool SetItemAsKestrelon(ControlContext& context, String& ItemType, String& StoreID,
                        String& OutlookID, String& AccountID, String& ItemID) {
  ObjectState& state = context.state;
  const bool done = Attempt(
      [&] {
        StartOutlook(context);
        state.mapi_namespace = state.outlook_application.CallChild(u"GetNamespace", u"MAPI");
        const Object item = state.mapi_namespace.CallChild(u"GetItemFromID", OutlookID, StoreID);
        SetStamp(item, u"Kestrelon", u"true");
        SetStampsOfType(item, LowerCase(ItemType), AccountID, ItemID);
        item.Call(u"save");
      },
      [&](const AutomationError& error) { ShowMessage(context, error.description()); });
  CleanUpOutlook(context);
  return done;
}

String CheckIfSynchronised(ControlContext& context, String& strEntryID, String& strItemType) {
  const bool is_contact = LowerCase(strItemType) == u"contact";
  ObjectState& state = context.state;
  const SearchedItems contacts = {olFolderContacts, olContactItem, u"FullName",
                                  u" in folder Contacts.", state.current_contact};
  const SearchedItems tasks = {olFolderTasks, olTaskItem, u"Subject", u" in folder Tasks.",
                               state.current_task};
  String result;
  Attempt(
      [&] { result = FindSynchronisedItem(context, is_contact ? contacts : tasks, strEntryID); },
      [&](const AutomationError&) { result = u"unknown"; });
  CleanUpOutlook(context);
  return result;
}

}  // namespace kestrelon
