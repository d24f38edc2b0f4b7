// The namespace "MAPI": the root of the mailbox.
#pragma once

#include "desktop/outlook/store/MailFolder.h"
#include "desktop/server/ServerObject.h"

namespace kestrelon::desktop {

class NameSpace final : public ServerObject<NameSpace> {
 public:
  static const MemberTable<NameSpace>& Members();

 private:
  Value GetApplication();
  Value GetType();
  Value GetFolders();
  // The user as the system knows it.
  Value GetCurrentUser();
  // OlDefaultFolders. Error 5 for a number that is none.
  Value GetDefaultFolder(const MethodArguments& arguments);
  // Of another user's mailbox. Error 0x8004010F when there is none for the recipient.
  Value GetSharedDefaultFolder(const MethodArguments& arguments);
  // In the user's own mailbox, or in that of the store id. An id that leads to nothing is error
  // 0x8004010F.
  Value GetFolderFromId(const MethodArguments& arguments);
  Value GetItemFromId(const MethodArguments& arguments);
  // Resolved when it is an address, or a user whose mailbox is shared.
  Value CreateRecipient(const MethodArguments& arguments);
  // Stores what is in a .vcf, .ics or .eml file as items of their default folders, and gives them.
  // See ImportItems.
  Value ImportFile(const MethodArguments& arguments);
};

}  // namespace kestrelon::desktop
