#include "outlook/ContactRecords.h"

#include "Control/ErrorReporting.h"
#include "outlook/ContactFields.h"
#include "outlook/MatchIndex.h"

namespace kestrelon {
namespace {

// Where each property of a contact comes from. Three fields are the lines of a street.
struct RecordField {
  const char16_t* field;
  const char16_t* property;
  bool is_street = false;
};

constexpr RecordField kRecordFields[] = {
    {u"ACCOUNT_NAME", u"CompanyName"},
    {u"TITLE", u"title"},
    {u"FIRSTNAME", u"FirstName"},
    {u"MIDDLENAME", u"MiddleName"},
    {u"LASTNAME", u"LastName"},
    {u"JOBTITLE", u"JobTitle"},
    {u"DEPARTMENT", u"Department"},
    {u"BUSINESSADDRESSSTREET", u"businessaddressstreet", true},
    {u"BUSINESSADDRESSCITY", u"businessaddresscity"},
    {u"BUSINESSADDRESSSTATE", u"businessaddressstate"},
    {u"BUSINESSADDRESSPOSTALCODE", u"businessaddresspostalcode"},
    {u"BUSINESSADDRESSCOUNTRY", u"businessaddresscountry"},
    {u"BUSINESSTELEPHONENUMBER", u"BusinessTelephoneNumber"},
    {u"BUSINESSFAXNUMBER", u"BusinessFaxNumber"},
    {u"BUSINESSHOMEPAGE", u"BusinessHomePage"},
    {u"HOMEADDRESSSTREET", u"HomeAddressStreet", true},
    {u"HOMEADDRESSCITY", u"HomeAddressCity"},
    {u"HOMEADDRESSSTATE", u"HomeAddressState"},
    {u"HOMEADDRESSPOSTALCODE", u"HomeAddressPostalCode"},
    {u"HOMEADDRESSCOUNTRY", u"HomeAddressCountry"},
    {u"HOMETELEPHONENUMBER", u"HomeTelephoneNumber"},
    {u"HOMEFAXNUMBER", u"HomeFaxNumber"},
    {u"EMAIL1ADDRESS", u"Email1Address"},
    {u"EMAIL2ADDRESS", u"Email2Address"},
    {u"EMAIL3ADDRESS", u"Email3Address"},
    {u"MOBILETELEPHONENUMBER", u"MobileTelephoneNumber"},
    {u"HOBBY", u"Hobby"},
    {u"NICKNAME", u"NickName"},
    {u"SPOUSE", u"Spouse"},
    {u"MANAGERNAME", u"ManagerName"},
    {u"REFERREDBY", u"ReferredBy"},
    {u"ASSISTANTNAME", u"AssistantName"},
    {u"ASSISTANTTELEPHONENUMBER", u"AssistantTelephoneNumber"},
    // NOTE: the CRM has one web address and Outlook two places to show it.
    {u"BUSINESSHOMEPAGE", u"WebPage"},
};

// NOTE: always three lines, so a street of one line ends in two line breaks: the CRM reads the
// lines back by their position.
String JoinStreet(ControlContext& context, const Object& document, const String& field) {
  String street = GetXMLFieldValue(context, document, field);
  street += u"\r\n" + GetXMLFieldValue(context, document, field + u"2");
  street += u"\r\n" + GetXMLFieldValue(context, document, field + u"3");
  return street;
}

void WriteRecord(ControlContext& context, const Object& document, const String& id) {
  const Object& contact = context.state.current_contact;
  for (const RecordField& field : kRecordFields) {
    contact.Put(field.property, field.is_street ? JoinStreet(context, document, field.field)
                                                : GetXMLFieldValue(context, document, field.field));
  }
  contact.Put(u"User1", u"Kestrelon");
  contact.Put(u"User2", u"Perm");
  contact.Put(u"User3", id);
  AddUserProperty(context, contact, u"KESTID").Put(u"Value", id);
  AddUserProperty(context, contact, u"Kestrelon").Put(u"Value", u"true");
  contact.Call(u"save");
}

bool ExportRecord(ControlContext& context, const String& record_xml, bool overwrite,
                  bool& match_by_name_and_email) {
  const Object document = context.platform.CreateObject(u"Msxml2.DOMDocument");
  document.Call(u"loadXML", record_xml);
  const Object record = document.CallChild(u"selectSingleNode", u"/record");
  const String id = record.Call(u"getAttribute", u"id").ToText();
  if (id.empty()) {
    ShowMessage(context, u"Failed to get contact id from XML feed!");
    return false;
  }
  String first_name = GetXMLFieldValue(context, document, u"FIRSTNAME");
  String last_name = GetXMLFieldValue(context, document, u"LASTNAME");
  if (first_name.empty() && last_name.empty()) {
    ShowMessage(context, u"FirstName and LastName appear to be blank, skipping this record.");
    return false;
  }
  first_name = GetXMLFieldValue(context, document, u"FIRSTNAME");
  last_name = GetXMLFieldValue(context, document, u"LASTNAME");
  const String email = GetXMLFieldValue(context, document, u"EMAIL1ADDRESS");
  switch (CheckOutLookContactExists(context, id, first_name, last_name, email,
                                    match_by_name_and_email)) {
    case ContactMatch::kFailed:
      return false;
    case ContactMatch::kNone:
      context.state.current_contact =
          context.state.bound_contact_folder.GetChild(u"Items").CallChild(u"Add");
      break;
    case ContactMatch::kFound:
      // NOTE: the flag of the id match rules over a match by names and e-mail address as well.
      if (!overwrite) return true;
  }
  WriteRecord(context, document, id);
  context.state.current_contact.Release();
  return true;
}

// A row is only as good as the folder was when the index was built.
bool IsStillContact(ControlContext& context, const String& id) {
  const Object stamp =
      context.state.current_contact.GetChild(u"UserProperties").CallChild(u"Find", u"KESTID");
  if (!stamp) {
    ShowMessage(context, u"Contact temporary index appears to be out of step!");
    return false;
  }
  if (!IsSameContactId(stamp.Get(u"Value").ToText(), id)) {
    ShowMessage(context, u"Contact temporary index is out of step!");
    return false;
  }
  return true;
}

ContactMatch LookUpContact(ControlContext& context, const ContactKey& key, bool& by_name) {
  ObjectState& state = context.state;
  if (!state.is_match_index_built) {
    state.match_index = BuildMatchIndex(state.bound_contact_folder);
    state.is_match_index_built = true;
  }
  if (key.first_name.empty() || key.last_name.empty() || key.email.empty()) by_name = false;
  const IndexMatch match = FindFirstMatch(state.match_index, key, by_name);
  if (match.kind == IndexMatch::kNone) return ContactMatch::kNone;
  const auto position = static_cast<int32_t>(match.row) + 1;
  state.current_contact = state.bound_contact_folder.CallChild(u"Items", position);
  const bool is_right =
      match.kind == IndexMatch::kByNameAndEmail || IsStillContact(context, key.id);
  return is_right ? ContactMatch::kFound : ContactMatch::kFailed;
}

}  // namespace

bool AddUpdateContactXML(ControlContext& context, String& ContactRecordXML,
                         bool& overwriteKestrelonIDMatch, bool& overwriteEmailNameMatch) {
  if (!context.state.bound_contact_folder) {
    ShowMessage(context,
                u"SetContactFolder() has not been run. Run this before calling "
                u"AddUpdateContactXml()");
    return false;
  }
  bool result = false;
  Attempt(
      [&] {
        result = ExportRecord(context, ContactRecordXML, overwriteKestrelonIDMatch,
                              overwriteEmailNameMatch);
      },
      [&](const AutomationError& error) {
        ShowMessage(context, u"Error exporting contact to Outlook: " + error.description());
      });
  return result;
}

String GetXMLFieldValue(ControlContext& context, const Object& document, const String& field_name) {
  String value;
  Attempt(
      [&] {
        const Object field =
            document.CallChild(u"selectSingleNode", u"/record/field[@name='" + field_name + u"']");
        if (field) value = field.Call(u"getAttribute", u"value").ToText();
      },
      [&](const AutomationError& error) {
        ShowMessage(context, u"Error occured in GetXMLFieldValue(): " + error.description());
      });
  return value;
}

ContactMatch CheckOutLookContactExists(ControlContext& context, const String& id,
                                       const String& first_name, const String& last_name,
                                       const String& email, bool& match_by_name_and_email) {
  if (!context.state.bound_contact_folder) {
    ShowMessage(context,
                u"SetContactFolder() has not been run. Run this before calling "
                u"CheckOutLookContactExists()");
    return ContactMatch::kNone;
  }
  auto result = ContactMatch::kFailed;
  Attempt(
      [&] {
        result =
            LookUpContact(context, {id, first_name, last_name, email}, match_by_name_and_email);
      },
      [&](const AutomationError& error) {
        ShowMessage(context,
                    u"Error occured in CheckOutLookContactExists(): " + error.description());
      });
  return result;
}

}  // namespace kestrelon
