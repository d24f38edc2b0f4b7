#include "desktop/outlook/objects/Item.h"

#include <ctime>

#include "desktop/outlook/formats/CalendarDocument.h"
#include "desktop/outlook/formats/ContactDocument.h"
#include "desktop/outlook/objects/Folder.h"
#include "desktop/outlook/objects/ItemProperties.h"
#include "desktop/outlook/objects/MailItem.h"
#include "desktop/outlook/objects/OutlookApplication.h"
#include "desktop/outlook/objects/Showing.h"

namespace kestrelon::desktop {
namespace {

Date LocalTime(int64_t nanoseconds) {
  const auto seconds = static_cast<std::time_t>(nanoseconds / 1'000'000'000);
  std::tm local{};
  localtime_r(&seconds, &local);
  return MakeDate({local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                   local.tm_min, std::min(local.tm_sec, 59)});
}

struct ClassNames {
  ItemClass item_class;
  StringView type;
  StringView message_class;
};

constexpr ClassNames kClassNames[] = {
    {ItemClass::kAppointment, u"AppointmentItem", u"IPM.Appointment"},
    {ItemClass::kContact, u"ContactItem", u"IPM.Contact"},
    {ItemClass::kMail, u"MailItem", u"IPM.Note"},
    {ItemClass::kTask, u"TaskItem", u"IPM.Task"},
    {ItemClass::kDistributionList, u"DistListItem", u"IPM.DistList"},
};

const ClassNames& NamesOf(ItemClass item_class) {
  for (const ClassNames& names : kClassNames) {
    if (names.item_class == item_class) return names;
  }
  throw AutomationError(kInvalidProcedureCall);
}

// What a user would call the item; "" when it has no name.
String TitleOf(const ItemDocument& document) {
  const bool is_contact = document.item_class() == ItemClass::kContact;
  for (const StringView property : {is_contact ? u"fullname" : u"subject", u"companyname"}) {
    if (!document.Has(property)) continue;
    if (const String title = Trim(document.Get(property).ToText()); !title.empty()) return title;
  }
  return u"";
}

}  // namespace

const MemberTable<Item>& Item::Members() {
  static const MemberTable<Item> table =
      MemberTable<Item>(u"Item")
          .Property(u"Application", &Item::GetApplication)
          .Property(u"Class", &Item::GetClass)
          .Property(u"MessageClass", &Item::GetMessageClass)
          .Property(u"EntryID", &Item::GetEntryId)
          .Property(u"Parent", &Item::GetParent)
          .Property(u"Saved", &Item::GetSaved)
          .Property(u"Size", &Item::GetSize)
          .Property(u"LastModificationTime", &Item::GetLastModificationTime)
          .Property(u"UserProperties", &Item::GetUserProperties)
          .Property(u"ItemProperties", &Item::GetItemProperties)
          .Method(u"Display", &Item::Display, {u"Modal"})
          .Method(u"Save", &Item::Save)
          .Method(u"Close", &Item::Close, {u"SaveMode"})
          .Method(u"Delete", &Item::Delete)
          .Method(u"ForwardAsVcard", &Item::ForwardAsVcard);
  return table;
}

Value Item::Invoke(InvokeKind kind, StringView member, const Arguments& arguments) {
  String buffer;
  const StringView name = FoldMemberName(member, buffer);
  if (Members().Has(name)) return ServerObject::Invoke(kind, name, arguments);
  const size_t expected = kind == InvokeKind::kPut ? 1 : 0;
  if (arguments.positional.size() != expected || !arguments.named.empty()) {
    if (!item_.document().Has(name)) throw AutomationError(kMemberNotFound);
    throw AutomationError(kWrongNumberOfArguments);
  }
  if (kind != InvokeKind::kPut) return item_.document().Get(name);
  item_.Put(name, arguments.positional.front());
  return {};
}

String Item::TypeName() const { return String(NamesOf(item_.item_class()).type); }

Value Item::GetApplication() { return CreateOutlookApplication(); }

Value Item::GetMessageClass() { return NamesOf(item_.item_class()).message_class; }

Value Item::GetEntryId() {
  return item_.file() ? item_.folder()->EntryIdOf(*item_.file()) : String();
}

Value Item::GetParent() { return Object(std::make_shared<Folder>(item_.folder())); }

Value Item::GetLastModificationTime() {
  return item_.file() ? LocalTime(item_.file()->stamp.modified) : kNoDate;
}

Value Item::GetUserProperties() {
  return Object(std::make_shared<UserProperties>(
      std::shared_ptr<UserFieldOwner>(shared_from_this(), &item_)));
}

Value Item::GetItemProperties() {
  return Object(
      std::make_shared<ItemProperties>(std::shared_ptr<EditedItem>(shared_from_this(), &item_)));
}

Value Item::Display(const MethodArguments&) {
  if (item_.IsSaved()) {
    ShowFile(item_.folder()->path() / item_.file()->name);
    return {};
  }
  const ItemDocument& document = item_.document();
  const bool is_card = document.item_class() == ItemClass::kContact ||
                       document.item_class() == ItemClass::kDistributionList;
  const bool is_mail = document.item_class() == ItemClass::kMail;
  ShowCopy(TitleOf(document), is_card ? ".vcf" : is_mail ? ".eml" : ".ics", document.content());
  return {};
}

Value Item::Save(const MethodArguments&) {
  item_.Save();
  return {};
}

Value Item::Close(const MethodArguments& arguments) {
  constexpr int32_t kDiscard = 1;
  if (arguments.Require(0).ToLong() == kDiscard) {
    item_.Discard();
  } else {
    item_.Save();
  }
  return {};
}

Value Item::Delete(const MethodArguments&) {
  item_.Delete();
  return {};
}

Value Item::ForwardAsVcard(const MethodArguments&) {
  if (item_.item_class() != ItemClass::kContact) throw AutomationError(kMemberNotFound);
  const ItemDocument& contact = item_.document();
  const String title = TitleOf(contact);
  auto mail = std::make_shared<MailItem>();
  mail->SetSubject(u"FW: " + title);
  mail->AttachContent(FileNameFrom(title.empty() ? u"Contact" : title) + u".vcf",
                      CardToSend(contact));
  return Object(mail);
}

Object StoredItem(const MailFolderPointer& folder, const ItemFilePointer& file) {
  return Object(std::make_shared<Item>(folder, file));
}

Object NewItem(int32_t item_type, const MailFolderPointer& folder) {
  const auto kind = static_cast<FolderKind>(item_type);
  if (kind == FolderKind::kMail) return Object(std::make_shared<MailItem>());
  const bool is_known =
      kind == FolderKind::kCalendar || kind == FolderKind::kContacts || kind == FolderKind::kTasks;
  if (!is_known || kind != folder->kind()) {
    throw AutomationError(kInvalidProcedureCall,
                          u"An item of type " + Value(item_type).ToText() +
                              u" cannot be created in \"" + folder->Name() +
                              u"\". The types are mail (0), appointment (1), contact (2) and task "
                              u"(3), each in a folder of its kind.");
  }
  return Object(std::make_shared<Item>(folder, kind == FolderKind::kCalendar   ? NewAppointment()
                                               : kind == FolderKind::kContacts ? NewContact()
                                                                               : NewTask()));
}

}  // namespace kestrelon::desktop
