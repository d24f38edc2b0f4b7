#include "outlook/ContactFolder.h"

#include "Control/ErrorReporting.h"
#include "outlook/ContactFields.h"
#include "outlook/OutlookConstants.h"
#include "outlook/PageContact.h"

namespace kestrelon {
namespace {

// The position of the subfolder of this name, from 1; of several, the last one's. 0 for none.
int32_t FindSubfolder(const Object& folders, const String& name) {
  int32_t position = 0;
  const int32_t count = folders.Get(u"count").ToLong();
  for (int32_t i = 1; i <= count; ++i) {
    if (folders.CallChild(u"item", i).Get(u"Name").ToText() == name) position = i;
  }
  return position;
}

void BindContactFolder(ObjectState& state) {
  const Object contacts = state.current_folder;
  if (state.contact_folder_name == u"Contacts") {
    state.bound_contact_folder = contacts;
    return;
  }
  const Object folders = contacts.GetChild(u"Folders");
  state.found_subfolder_position = FindSubfolder(folders, state.contact_folder_name);
  state.bound_contact_folder = state.found_subfolder_position == 0
                                   ? contacts
                                   : folders.CallChild(u"item", state.found_subfolder_position);
}

void DeleteTemporaryContacts(const Object& folder) {
  const Object items = folder.GetChild(u"Items");
  int32_t count = items.Get(u"count").ToLong();
  for (int32_t i = 1; i <= count;) {
    const Object item = items.CallChild(u"item", i);
    if (item.Get(u"Class").ToLong() != olContact || item.Get(u"User2").ToText() != u"Temp") {
      ++i;
    } else if (item.Get(u"User1").ToText() == u"Kestrelon") {
      item.Call(u"Delete");
      count = items.Get(u"count").ToLong();  // the next item is at position i now
    }
    // NOTE: a temporary contact of someone else's is neither deleted nor passed over: the call does
    // not return before the folder is free of temporary contacts.
  }
}

// A page shows an empty field as "-".
void CleanField(String& field) {
  field = Trim(field);
  if (field == u"-") field.clear();
}

}  // namespace

void SetContactFolder(ControlContext& context, String& foldername) {
  ObjectState& state = context.state;
  state.found_subfolder_position = 0;
  state.contact_folder_name = foldername;
  state.is_match_index_built = false;
  const bool has_outlook = Attempt(
      [&] {
        state.outlook_application = context.platform.CreateObject(u"Outlook.Application");
        state.mapi_namespace = state.outlook_application.CallChild(u"GetNamespace", u"MAPI");
      },
      [&](const AutomationError&) {
        ShowMessage(context, u"Outlook does not appear to be installed");
      });
  if (!has_outlook) return;
  Attempt(
      [&] {
        state.current_folder =
            state.mapi_namespace.CallChild(u"GetDefaultFolder", olFolderContacts);
        BindContactFolder(state);
        DeleteTemporaryContacts(state.bound_contact_folder);
      },
      [&](const AutomationError&) { ShowMessage(context, u"Could not find contacts folder"); });
}

void AddContact(ControlContext& context, String& id, String& LastName, String& contactType,
                String& straccount, String& Email, String& FirstName, String& title,
                String& Position, String& Phone, String& mobile, String& businessaddressstreet,
                String& businessaddressstreet2, String& businessaddressstreet3,
                String& businessaddresscity, String& businessaddressstate,
                String& businessaddresspostalcode, String& businessaddresscountry) {
  const Object& folder = context.state.bound_contact_folder;
  if (!folder) {
    // NOTE: no return; the next line fails, which tells the page as well.
    ShowMessage(context,
                u"SetContactFolder() has not been run. Run this before calling AddContact()");
  }
  const Object contact = folder.GetChild(u"Items").CallChild(u"Add");
  const auto write_clean = [&](StringView property, String& field) {
    CleanField(field);
    contact.Put(property, field);
  };
  write_clean(u"title", title);
  write_clean(u"FirstName", FirstName);
  write_clean(u"LastName", LastName);
  write_clean(u"JobTitle", Position);
  write_clean(u"Email1Address", Email);
  write_clean(u"BusinessTelephoneNumber", Phone);
  write_clean(u"MobileTelephoneNumber", mobile);
  contact.Put(u"User1", u"Kestrelon");
  contact.Put(u"CompanyName", straccount);
  int line = 0;
  for (String* street :
       {&businessaddressstreet, &businessaddressstreet2, &businessaddressstreet3}) {
    if (*street == u"-") street->clear();
    WriteStreetLine(contact, u"businessaddressstreet", ++line, *street);
  }
  contact.Put(u"businessaddresscity", businessaddresscity);
  contact.Put(u"businessaddressstate", businessaddressstate);
  contact.Put(u"businessaddresspostalcode", businessaddresspostalcode);
  contact.Put(u"businessaddresscountry", businessaddresscountry);
  if (contactType == u"Temporary") {
    contact.Put(u"User2", u"Temp");
  } else {
    contact.Put(u"User2", u"Perm");
    AddUserProperty(context, contact, u"KESTID").Put(u"Value", id);
    AddUserProperty(context, contact, u"Kestrelon").Put(u"Value", u"true");
  }
  contact.Call(u"save");
}

bool AddContactAll(ControlContext& context, HtmlDocument& oHTMLDoc) {
  const Object& folder = context.state.bound_contact_folder;
  if (!folder) {
    ShowMessage(context,
                u"SetContactFolder() has not been run. Run this before calling AddContactAll()");
  }
  const auto error = IgnoreFailures([&] {
    const Object contact = folder.GetChild(u"Items").CallChild(u"Add");
    FillContactFromPage(contact, oHTMLDoc);
    contact.Put(u"User1", u"Kestrelon");
    contact.Put(u"User2", u"Perm");
    contact.Put(u"User3", ReadPageField(oHTMLDoc, u"ACC_ID"));
    AddUserProperty(context, contact, u"KESTID").Put(u"Value", ReadPageField(oHTMLDoc, u"ACC_ID"));
    AddUserProperty(context, contact, u"Kestrelon").Put(u"Value", u"true");
    contact.Put(u"body", ReadPageField(oHTMLDoc, u"DETAILS"));
    contact.Call(u"save");
  });
  return !error;
}

}  // namespace kestrelon
