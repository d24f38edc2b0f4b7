#include "outlook/ContactRemoval.h"

#include "Control/OfficeConnection.h"
#include "outlook/OutlookConstants.h"
#include "outlook/PageContact.h"

namespace kestrelon {
namespace {

void OpenContacts(ControlContext& context) {
  ObjectState& state = context.state;
  state.outlook_application = context.platform.CreateObject(u"Outlook.Application");
  state.mapi_namespace = state.outlook_application.CallChild(u"GetNamespace", u"MAPI");
  state.current_folder = state.mapi_namespace.CallChild(u"GetDefaultFolder", olFolderContacts);
}

// Calls `treat(item, stamp)` for every item of the folder with the stamp of this CRM id; it returns
// whether it deleted the item.
template <typename Treat>
void ForEachStamped(ControlContext& context, const Object& folder, const String& id,
                    const Treat& treat) {
  Object& item = context.state.current_contact;
  const Object items = folder.GetChild(u"Items");
  const int32_t count = items.Get(u"count").ToLong();
  int32_t count_now = count;
  for (int32_t i = 1; i <= count && i <= count_now; ++i) {
    item = items.CallChild(u"", i);
    const Object stamp = item.GetChild(u"UserProperties").CallChild(u"Find", u"KESTID");
    if (!stamp || stamp.Get(u"Value").ToText() != id) continue;
    // NOTE: the item that moves into the place of a deleted one is passed over.
    if (treat(item, stamp)) count_now = items.Get(u"count").ToLong();
  }
}

// NOTE: not saved, so the contact keeps its link until the user saves it.
bool UnstampDefaultContact(const Object&, const Object& stamp) {
  stamp.Put(u"Value", u"");
  return false;
}

bool UnstampContact(const Object& contact, const Object& stamp) {
  const Object mark = contact.GetChild(u"UserProperties").CallChild(u"Find", u"Kestrelon");
  if (mark) mark.Put(u"Value", u"");
  stamp.Put(u"Value", u"");
  contact.Call(u"save");
  return false;
}

bool DeleteContact(const Object& contact, const Object&) {
  contact.Call(u"Delete");
  return true;
}

void RemoveStamped(ControlContext& context, const String& id, bool deletes) {
  OpenContacts(context);
  const Object& contacts = context.state.current_folder;
  ForEachStamped(context, contacts, id, deletes ? DeleteContact : UnstampDefaultContact);
  const Object folders = contacts.GetChild(u"Folders");
  const int32_t count = folders.Get(u"count").ToLong();
  for (int32_t j = 1; j <= count; ++j) {
    const Object folder = folders.CallChild(u"item", j);
    if (folder.Get(u"DefaultItemType").ToLong() != olContactItem) continue;
    ForEachStamped(context, folder, id, deletes ? DeleteContact : UnstampContact);
  }
}

}  // namespace

String RemoveContact(ControlContext& context, String& strContactID, bool& strDelete) {
  const auto error = IgnoreFailures([&] { RemoveStamped(context, strContactID, strDelete); });
  CleanUpOutlook(context);
  if (error) {
    return u"Kestrelon failed to unsynchronize the Outlook contact. Please contact your system "
           u"administrator";
  }
  // The page goes on with the folder's name after "from".
  return strDelete ? u"The associated Outlook contact was successfully deleted from"
                   : u"The contact was successfully unsynchronized from its associated Outlook "
                     u"Contact";
}

bool CreateContactAsvCard(ControlContext& context, HtmlDocument& oHTMLDoc) {
  const auto error = IgnoreFailures([&] {
    OpenContacts(context);
    Object& contact = context.state.current_contact;
    contact = context.state.current_folder.GetChild(u"Items").CallChild(u"Add");
    FillContactFromPage(contact, oHTMLDoc);
    contact.CallChild(u"ForwardAsVcard").Call(u"display");
  });
  CleanUpOutlook(context);
  return !error;
}

}  // namespace kestrelon
