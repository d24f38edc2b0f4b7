// The mailbox as a script sees it: folders and items of "Outlook.Application".
#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/Platform.h"

namespace kestrelon::commandline {

// What could not be done, and what to do about it, in a sentence fit for a terminal.
class MailboxFailure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct FolderEntry {
  Object folder;
  String name;
  String path;       // "Contacts/Clients"
  size_t depth = 0;  // 0 for the top folders
};

struct ItemEntry {
  String id;
  std::string kind;  // "contact", "list", "task", "appointment", "mail"
  String name;       // full name, name of the list, or subject
};

class MailboxView {
 public:
  // Starts Outlook, which does not open it.
  explicit MailboxView(Platform& platform);

  // Whether the user had Outlook open before this program came.
  bool WasOpen() const { return was_open_; }
  const Object& name_space() const { return name_space_; }
  // Stands for Outlook's window.
  Object Explorer() const { return application_.CallChild(u"ActiveExplorer"); }

  // Every folder of the user's mailbox, parents before their children.
  std::vector<FolderEntry> Folders() const;
  // By path or entry id, in any case, or by a name that only one folder has.
  Object FindFolder(const String& name) const;
  Object FindItem(const String& id) const;

 private:
  bool was_open_ = false;
  Object application_;
  Object name_space_;
};

// "contacts", "tasks", "calendar" or "mail".
std::string KindOfFolder(const Object& folder);
ItemEntry Describe(const Object& item);
// "Contacts/Clients" of a folder that need not be the user's own.
String PathOf(const Object& folder);

// A walk in the collection's order.
void ForEach(const Object& collection, const std::function<void(const Object&)>& visit);

}  // namespace kestrelon::commandline
