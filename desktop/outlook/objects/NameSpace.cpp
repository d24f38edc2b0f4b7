#include "desktop/outlook/objects/NameSpace.h"

#include <cstdlib>

#include "desktop/outlook/formats/OutlookErrors.h"
#include "desktop/outlook/mail/Recipients.h"
#include "desktop/outlook/objects/Folder.h"
#include "desktop/outlook/objects/ImportFile.h"
#include "desktop/outlook/objects/Item.h"
#include "desktop/outlook/objects/Items.h"
#include "desktop/outlook/objects/OutlookApplication.h"

namespace kestrelon::desktop {
namespace {

bool IsSharingUser(StringView name) { return SharedStore(name) != nullptr; }

Object DefaultFolderObject(const MailStorePointer& store, const Value& number) {
  const MailFolderPointer folder = DefaultFolder(store, number.ToLong());
  if (folder == nullptr) {
    throw AutomationError(kInvalidProcedureCall,
                          u"There is no default folder " + number.ToText() +
                              u". They are Deleted Items (3), Outbox (4), Sent Items (5), Inbox "
                              u"(6), Calendar (9), Contacts (10), Tasks (13) and Drafts (16).");
  }
  return Object(std::make_shared<Folder>(folder));
}

// The mailbox that the second argument names, or the user's own.
MailStorePointer StoreOf(const MethodArguments& arguments) {
  const String id = arguments.Has(1) ? arguments[1].ToText() : u"";
  const MailStorePointer store = id.empty() ? OwnStore() : StoreById(id);
  if (store == nullptr) throw ObjectNotFound();
  return store;
}

}  // namespace

const MemberTable<NameSpace>& NameSpace::Members() {
  static const MemberTable<NameSpace> table =
      MemberTable<NameSpace>(u"NameSpace")
          .Property(u"Application", &NameSpace::GetApplication)
          .Property(u"Type", &NameSpace::GetType)
          .Property(u"Folders", &NameSpace::GetFolders)
          .Property(u"CurrentUser", &NameSpace::GetCurrentUser)
          .Method(u"GetDefaultFolder", &NameSpace::GetDefaultFolder, {u"FolderType"})
          .Method(u"GetSharedDefaultFolder", &NameSpace::GetSharedDefaultFolder,
                  {u"Recipient", u"FolderType"})
          .Method(u"GetFolderFromID", &NameSpace::GetFolderFromId,
                  {u"EntryIDFolder", u"EntryIDStore"})
          .Method(u"GetItemFromID", &NameSpace::GetItemFromId, {u"EntryIDItem", u"EntryIDStore"})
          .Method(u"CreateRecipient", &NameSpace::CreateRecipient, {u"RecipientName"})
          .Method(u"ImportFile", &NameSpace::ImportFile, {u"Path"});
  return table;
}

Value NameSpace::GetApplication() { return CreateOutlookApplication(); }

Value NameSpace::GetType() { return u"MAPI"; }

Value NameSpace::GetFolders() { return Object(std::make_shared<Folders>(OwnStore(), nullptr)); }

Value NameSpace::GetCurrentUser() {
  const char* user = std::getenv("USER");
  return Object(
      std::make_shared<Recipient>(user == nullptr ? u"User" : FromUtf8(user), RecipientType::kTo));
}

Value NameSpace::GetDefaultFolder(const MethodArguments& arguments) {
  return DefaultFolderObject(OwnStore(), arguments.Require(0));
}

Value NameSpace::GetSharedDefaultFolder(const MethodArguments& arguments) {
  const Object recipient = arguments.Require(0).ToObject();
  MailStorePointer store = SharedStore(recipient.Get(u"Name").ToText());
  const String address = store ? u"" : recipient.Get(u"Address").ToText();
  if (!address.empty()) store = SharedStore(address);
  if (store == nullptr) throw ObjectNotFound();
  return DefaultFolderObject(store, arguments.Require(1));
}

Value NameSpace::GetFolderFromId(const MethodArguments& arguments) {
  const MailFolderPointer folder = FolderById(StoreOf(arguments), arguments.Require(0).ToText());
  if (folder == nullptr) throw ObjectNotFound();
  return Object(std::make_shared<Folder>(folder));
}

Value NameSpace::GetItemFromId(const MethodArguments& arguments) {
  const auto item = ItemById(StoreOf(arguments), arguments.Require(0).ToText());
  if (!item) throw ObjectNotFound();
  return StoredItem(item->folder, item->file);
}

Value NameSpace::CreateRecipient(const MethodArguments& arguments) {
  return Object(std::make_shared<Recipient>(arguments.Require(0).ToText(), RecipientType::kTo,
                                            &IsSharingUser));
}

Value NameSpace::ImportFile(const MethodArguments& arguments) {
  return Object(std::make_shared<ItemList>(ImportItems(arguments.Require(0).ToText())));
}

}  // namespace kestrelon::desktop
