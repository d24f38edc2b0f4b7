// What stands for Outlook's window, with what the user has selected.
#pragma once

#include "desktop/server/ServerObject.h"

namespace kestrelon::desktop {

class Explorer final : public ServerObject<Explorer> {
 public:
  static const MemberTable<Explorer>& Members();

 private:
  Value GetApplication();
  Value GetCaption();
  // The selected items that still exist, as they are selected now.
  Value GetSelection();
  // There is no window to choose a folder in: the Inbox.
  Value GetCurrentFolder();
  Value ClearSelection(const MethodArguments& arguments);
  // Error 0x8004010F for an item that was never saved, or is of another user's mailbox.
  Value AddToSelection(const MethodArguments& arguments);
  Value RemoveFromSelection(const MethodArguments& arguments);
  // Marks Outlook as open, for every program that asks for the running one.
  Value Display(const MethodArguments& arguments);
  Value Close(const MethodArguments& arguments);
};

// Outlook's one explorer.
class Explorers final : public ServerObject<Explorers> {
 public:
  static const MemberTable<Explorers>& Members();
  std::unique_ptr<Enumerator> Enumerate() override;

 private:
  Value GetCount();
  Value Item(const MethodArguments& arguments);
};

}  // namespace kestrelon::desktop
