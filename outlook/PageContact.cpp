#include "outlook/PageContact.h"

#include "outlook/ContactFields.h"
#include "outlook/OutlookConstants.h"

namespace kestrelon {
namespace {

enum class Rule {
  kCopy,
  kStreet,       // three elements: the id, and the id with 2 and 3 behind it
  kSensitivity,  // a word, left unwritten when it is none of Outlook's
  kDate,         // left unwritten when it is empty; Outlook reads the text
};

struct PageField {
  const char16_t* element;
  const char16_t* property;
  Rule rule = Rule::kCopy;
};

constexpr PageField kPageFields[] = {
    {u"TITLE", u"title"},
    {u"FIRSTNAME", u"FirstName"},
    {u"LASTNAME", u"LastName"},
    {u"JOBTITLE", u"JobTitle"},
    {u"DEPARTMENT", u"Department"},
    {u"AC_NAME", u"CompanyName"},
    {u"BUSINESSADDRESSSTREET", u"businessaddressstreet", Rule::kStreet},
    {u"BUSINESSADDRESSCITY", u"businessaddresscity"},
    {u"BUSINESSADDRESSSTATE", u"businessaddressstate"},
    {u"BUSINESSADDRESSPOSTALCODE", u"businessaddresspostalcode"},
    {u"BUSINESSADDRESSCOUNTRY", u"businessaddresscountry"},
    {u"EMAIL1ADDRESS", u"Email1Address"},
    {u"EMAIL2ADDRESS", u"Email2Address"},
    {u"EMAIL3ADDRESS", u"Email3Address"},
    {u"BUSINESSTELEPHONENUMBER", u"BusinessTelephoneNumber"},
    {u"BUSINESSFAXNUMBER", u"BusinessFaxNumber"},
    {u"MOBILETELEPHONENUMBER", u"MobileTelephoneNumber"},
    {u"WEBPAGE", u"WebPage"},
    {u"MANAGERNAME", u"ManagerName"},
    {u"REFERREDBY", u"ReferredBy"},
    {u"ASSISTANTNAME", u"AssistantName"},
    {u"ASSISTANTTELEPHONENUMBER", u"AssistantTelephoneNumber"},
    {u"HOMEADDRESSSTREET", u"HomeAddressStreet", Rule::kStreet},
    {u"HOMEADDRESSCITY", u"HomeAddressCity"},
    {u"HOMEADDRESSSTATE", u"HomeAddressState"},
    {u"HOMEADDRESSPOSTALCODE", u"HomeAddressPostalCode"},
    {u"HOMEADDRESSCOUNTRY", u"HomeAddressCountry"},
    {u"SENSITIVITY", u"Sensitivity", Rule::kSensitivity},
    {u"SUFFIX", u"Suffix"},
    {u"HOMETELEPHONENUMBER", u"HomeTelephoneNumber"},
    {u"HOMEFAXNUMBER", u"HomeFaxNumber"},
    {u"PERSONALHOMEPAGE", u"PersonalHomePage"},
    {u"BIRTHDAY", u"Birthday", Rule::kDate},
    {u"HOBBY", u"Hobby"},
    {u"NICKNAME", u"NickName"},
    {u"SPOUSE", u"Spouse"},
    {u"MIDDLENAME", u"MiddleName"},
    {u"ANNIVERSARY", u"Anniversary", Rule::kDate},
};

struct SensitivityWord {
  const char16_t* word;
  int32_t sensitivity;
};

constexpr SensitivityWord kSensitivities[] = {{u"Confidential", olConfidential},
                                              {u"Normal", olNormal},
                                              {u"Personal", olPersonal},
                                              {u"Private", olPrivate}};

void WriteStreet(const Object& contact, const HtmlDocument& page, const PageField& field) {
  const String element = field.element;
  WriteStreetLine(contact, field.property, 1, ReadPageField(page, element));
  WriteStreetLine(contact, field.property, 2, ReadPageField(page, element + u"2"));
  WriteStreetLine(contact, field.property, 3, ReadPageField(page, element + u"3"));
}

void WriteSensitivity(const Object& contact, StringView property, const String& word) {
  for (const SensitivityWord& known : kSensitivities) {
    if (word == known.word) return contact.Put(property, known.sensitivity);
  }
}

void WriteField(const Object& contact, const HtmlDocument& page, const PageField& field) {
  if (field.rule == Rule::kStreet) return WriteStreet(contact, page, field);
  const String value = ReadPageField(page, field.element);
  if (field.rule == Rule::kSensitivity) return WriteSensitivity(contact, field.property, value);
  if (field.rule == Rule::kDate && value.empty()) return;
  contact.Put(field.property, value);
}

}  // namespace

String ReadPageField(const HtmlDocument& page, StringView id) {
  return page.CallChild(u"getElementById", id).Get(u"Value").ToText();
}

void FillContactFromPage(const Object& contact, const HtmlDocument& page) {
  for (const PageField& field : kPageFields) WriteField(contact, page, field);
}

}  // namespace kestrelon
