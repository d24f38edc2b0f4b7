#include "outlook/FolderLists.h"

#include "Control/ErrorReporting.h"
#include "Control/OfficeConnection.h"
#include "outlook/FolderChoice.h"
#include "outlook/OutlookConstants.h"
#include "outlook/SortTable.h"

namespace kestrelon {
namespace {

constexpr StringView kSeparator = u"#~";

void AppendPair(String& list, const String& name, const String& id) {
  list.append(name).append(kSeparator).append(id).append(kSeparator);
}

// One late-bound property as text.
String TextOf(const Object& object, StringView property) { return object.Get(property).ToText(); }

// What the subfolders of a default folder hold, and how the page calls it.
struct FolderKind {
  int32_t default_folder;
  int32_t item_type;
  StringView name;
};

// The pairs of the subfolders that hold such items, in `pairs`. False after a failure.
bool CollectSubfolders(ControlContext& context, const FolderKind& kind, bool leave_out_empty,
                       String& pairs) {
  const auto collect = [&] {
    Object& folder = context.state.current_folder;
    folder = context.state.mapi_namespace.CallChild(u"GetDefaultFolder", kind.default_folder);
    const Object folders = folder.GetChild(u"Folders");
    const int32_t count = folders.Get(u"count").ToLong();
    for (int32_t i = 1; i <= count; ++i) {
      const Object subfolder = folders.CallChild(u"item", i);
      if (subfolder.Get(u"DefaultItemType").ToLong() != kind.item_type) continue;
      if (leave_out_empty && subfolder.GetChild(u"Items").Get(u"count").ToLong() == 0) continue;
      const String name = TextOf(subfolder, u"Name");
      AppendPair(pairs, name, TextOf(subfolder, u"EntryID"));
    }
  };
  return Attempt(collect, [&](const AutomationError&) {
    ShowMessage(context, u"Could not find '" + String(kind.name) + u"' folder.");
  });
}

String ListSubfolders(ControlContext& context, const FolderKind& kind, bool leave_out_empty) {
  String pairs;
  const bool complete =
      OpenOutlook(context) && CollectSubfolders(context, kind, leave_out_empty, pairs);
  CleanUpOutlook(context);
  if (!complete) return pairs;
  const String list = String(kind.name).append(kSeparator);
  if (pairs.empty()) return list;
  // NOTE: one character of the last separator goes and the other stays: the page's parser counts
  // on it.
  pairs.pop_back();
  return list + String(kSeparator) + pairs;
}

// Opens Outlook and lets `collect` fill the list that is returned, whatever becomes of it.
template <typename Collect>
String ListItems(ControlContext& context, StringView member, const Collect& collect) {
  String list;
  if (OpenOutlook(context)) {
    Attempt([&] { collect(list); },
            [&](const AutomationError&) {
              ShowMessage(context, u"An error occurred running " + String(member), kInformation);
            });
  }
  CleanUpOutlook(context);
  return list;
}

// Calls `visit` for every contact of the collection that has a last name; distribution lists have
// no such property.
template <typename Visit>
void ForEachNamedContact(const Object& items, const Visit& visit) {
  const auto walk = items.Enumerate();
  while (const std::optional<Value> element = walk->Next()) {
    const Object item = element->ToObject();
    if (item.Get(u"Class").ToLong() == olContact && !TextOf(item, u"LastName").empty()) visit(item);
  }
}

SortTable ReadContacts(const Object& folder) {
  const Object items = folder.GetChild(u"Items");
  size_t count = 0;
  ForEachNamedContact(items, [&](const Object&) { ++count; });
  // NOTE: a table cannot be sized to no rows: the page is told of a folder without contacts.
  if (count == 0) throw AutomationError(kSubscriptOutOfRange);
  SortTable table(count);
  size_t row = 0;
  ForEachNamedContact(items, [&](const Object& item) {
    if (row == table.size()) throw AutomationError(kSubscriptOutOfRange);
    table[row].key = TextOf(item, u"FullName");
    table[row].payload = TextOf(item, u"EntryID");
    ++row;
  });
  return table;
}

}  // namespace

String GetContactFolderList(ControlContext& context, String& strImport) {
  return ListSubfolders(context, {olFolderContacts, olContactItem, u"Contacts"},
                        strImport == u"import");
}

String GetTaskFolderList(ControlContext& context) {
  return ListSubfolders(context, {olFolderTasks, olTaskItem, u"Tasks"}, false);
}

String GetFolderContactItems(ControlContext& context, String& foldertosearch) {
  return ListItems(context, u"GetFolderContactItems", [&](String& list) {
    context.state.current_folder = ChooseFolder(context, olFolderContacts, foldertosearch);
    SortTable table = ReadContacts(context.state.current_folder);
    SortAlphabetically(context, table);
    for (const SortRow& row : table) AppendPair(list, row.key, row.payload);
  });
}

String GetFolderTaskItems(ControlContext& context, String& foldertosearch) {
  return ListItems(context, u"GetFolderTaskItems", [&](String& list) {
    context.state.current_folder = ChooseFolder(context, olFolderTasks, foldertosearch);
    const auto walk = context.state.current_folder.GetChild(u"Items").Enumerate();
    while (const std::optional<Value> element = walk->Next()) {
      const Object item = element->ToObject();
      if (item.Get(u"Class").ToLong() != olTask) continue;
      const String subject = TextOf(item, u"Subject");
      if (!subject.empty()) AppendPair(list, subject, TextOf(item, u"EntryID"));
    }
  });
}

}  // namespace kestrelon
