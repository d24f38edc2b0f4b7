#include "frontends/commandline/MailboxView.h"

#include "frontends/commandline/TerminalText.h"

namespace kestrelon::commandline {
namespace {

// OlObjectClass.
constexpr int32_t kAppointment = 26;
constexpr int32_t kContact = 40;
constexpr int32_t kMail = 43;
constexpr int32_t kTask = 48;
constexpr int32_t kDistributionList = 69;

// MAPI's error for an id that leads to nothing.
constexpr auto kObjectNotFound = static_cast<int32_t>(0x8004010F);

// The object that the namespace has for an id; Nothing when there is none.
Object Look(const Object& name_space, StringView member, const String& id) {
  Object found;
  const auto failure = IgnoreFailures([&] { found = name_space.CallChild(member, UpperCase(id)); });
  if (failure && failure->number() != kObjectNotFound) throw *failure;
  return found;
}

void CollectFolders(const Object& folders, const String& above, size_t depth,
                    std::vector<FolderEntry>& entries) {
  ForEach(folders, [&](const Object& folder) {
    const String name = folder.Get(u"Name").ToText();
    const String path = above.empty() ? name : above + u"/" + name;
    entries.push_back({folder, name, path, depth});
    CollectFolders(folder.GetChild(u"Folders"), path, depth + 1, entries);
  });
}

std::string KindOfItem(int32_t item_class) {
  switch (item_class) {
    case kAppointment:
      return "appointment";
    case kContact:
      return "contact";
    case kMail:
      return "mail";
    case kTask:
      return "task";
    case kDistributionList:
      return "list";
    default:
      return "item";
  }
}

// A contact need not have a name; a company or an address tells it apart as well.
String NameOfContact(const Object& contact) {
  for (const char16_t* property : {u"FullName", u"CompanyName", u"Email1Address"}) {
    String name = contact.Get(property).ToText();
    if (!name.empty()) return name;
  }
  return u"";
}

}  // namespace

void ForEach(const Object& collection, const std::function<void(const Object&)>& visit) {
  const auto walk = collection.Enumerate();
  while (const auto element = walk->Next()) visit(element->ToObject());
}

std::string KindOfFolder(const Object& folder) {
  switch (folder.Get(u"DefaultItemType").ToLong()) {
    case 0:
      return "mail";
    case 1:
      return "calendar";
    case 2:
      return "contacts";
    case 3:
      return "tasks";
    default:
      return "other";
  }
}

ItemEntry Describe(const Object& item) {
  const int32_t item_class = item.Get(u"Class").ToLong();
  const String name = item_class == kContact            ? NameOfContact(item)
                      : item_class == kDistributionList ? item.Get(u"DLName").ToText()
                                                        : item.Get(u"Subject").ToText();
  return {item.Get(u"EntryID").ToText(), KindOfItem(item_class), name};
}

// "\\Mailbox\Contacts\Clients" without the mailbox.
String PathOf(const Object& folder) {
  const String path = folder.Get(u"FolderPath").ToText();
  const size_t behind_mailbox = path.find(u'\\', 2);
  if (!path.starts_with(u"\\\\") || behind_mailbox == String::npos) return path;
  return ReplaceAll(path.substr(behind_mailbox + 1), u"\\", u"/");
}

MailboxView::MailboxView(Platform& platform) {
  was_open_ = !IgnoreFailures([&] { platform.GetRunningObject(u"Outlook.Application"); });
  application_ = platform.CreateObject(u"Outlook.Application");
  name_space_ = application_.CallChild(u"GetNamespace", u"MAPI");
}

std::vector<FolderEntry> MailboxView::Folders() const {
  // Outlook has these always; a mailbox that is new has not made them yet.
  constexpr int32_t kDefaultFolders[] = {6, 9, 10, 13,
                                         16};  // Inbox, Calendar, Contacts, Tasks, Drafts
  for (const int32_t folder : kDefaultFolders) name_space_.CallChild(u"GetDefaultFolder", folder);
  std::vector<FolderEntry> entries;
  CollectFolders(name_space_.GetChild(u"Folders"), u"", 0, entries);
  return entries;
}

Object MailboxView::FindFolder(const String& name) const {
  const std::vector<FolderEntry> entries = Folders();
  std::vector<const FolderEntry*> called_so;
  for (const FolderEntry& entry : entries) {
    if (EqualIgnoringCase(entry.path, name)) return entry.folder;
    if (EqualIgnoringCase(entry.name, name)) called_so.push_back(&entry);
  }
  if (called_so.size() == 1) return called_so.front()->folder;
  if (!called_so.empty()) {
    std::string paths;
    for (const FolderEntry* entry : called_so) {
      paths += (paths.empty() ? "" : ", ") + OneLine(entry->path);
    }
    throw MailboxFailure("several folders are called \"" + OneLine(name) + "\": " + paths +
                         "; name one by its path");
  }
  if (Object folder = Look(name_space_, u"GetFolderFromID", name)) return folder;
  throw MailboxFailure("there is no folder \"" + OneLine(name) +
                       "\"; \"kestrelon mailbox list\" shows them all");
}

Object MailboxView::FindItem(const String& id) const {
  if (Object item = Look(name_space_, u"GetItemFromID", id)) return item;
  throw MailboxFailure("there is no item with the id \"" + OneLine(id) +
                       "\"; \"kestrelon mailbox list FOLDER\" shows the ids of a folder's items");
}

}  // namespace kestrelon::commandline
