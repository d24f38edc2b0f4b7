#include "desktop/outlook/formats/ContactProperties.h"

#include <unordered_map>

namespace kestrelon::desktop {
namespace {

using Property = ContactProperty;
using Kind = ContactProperty::Kind;
using Names = std::array<std::string_view, 5>;

Property NamePart(StringView name, size_t part) {
  return {.name = name, .kind = Kind::kNamePart, .part = part};
}

Property CompanyPart(StringView name, size_t part) {
  return {.name = name, .kind = Kind::kCompanyPart, .lines = {.names = {"ORG"}}, .part = part};
}

Property Text(StringView name, const Names& names, std::string_view label = "") {
  return {.name = name, .kind = Kind::kText, .lines = {.names = names, .label = label}};
}

Property Telephone(StringView name, uint32_t types, std::string_view written, int32_t slot = 1) {
  return {.name = name,
          .kind = Kind::kTelephone,
          .lines = {.names = {"TEL", "X-MS-TEL"}, .types = types, .written_types = written},
          .slot = slot};
}

Property Email(StringView name, int32_t slot) {
  return {.name = name,
          .kind = Kind::kText,
          .lines = {.names = {"EMAIL"}, .written_types = "INTERNET"},
          .slot = slot};
}

Property Page(StringView name, uint32_t types, std::string_view written) {
  return {.name = name,
          .kind = Kind::kUri,
          .lines = {.names = {"URL"}, .types = types, .written_types = written}};
}

Property Day(StringView name, const Names& names, std::string_view label) {
  return {.name = name, .kind = Kind::kDate, .lines = {.names = names, .label = label}};
}

Property ForLists(Property property, bool of_contacts = true) {
  property.of_lists = true;
  property.of_contacts = of_contacts;
  return property;
}

struct AddressNames {
  StringView whole, street, city, state, postal_code, country, box;
};

void AddAddress(std::vector<Property>& out, const AddressNames& names, uint32_t types,
                std::string_view written) {
  const LineSet lines = {.names = {"ADR"}, .types = types, .written_types = written};
  out.push_back({.name = names.whole, .kind = Kind::kAddress, .lines = lines});
  out.push_back({.name = names.street, .kind = Kind::kStreet, .lines = lines});
  const std::pair<StringView, size_t> parts[] = {{names.box, 0},
                                                 {names.city, 3},
                                                 {names.state, 4},
                                                 {names.postal_code, 5},
                                                 {names.country, 6}};
  for (const auto& [name, part] : parts) {
    out.push_back({.name = name, .kind = Kind::kAddressPart, .lines = lines, .part = part});
  }
}

void AddNames(std::vector<Property>& out) {
  out.push_back(ForLists({.name = u"DLName", .kind = Kind::kFullName}, false));
  out.push_back({.name = u"FullName", .kind = Kind::kFullName});
  out.push_back(NamePart(u"Title", 3));
  out.push_back(NamePart(u"FirstName", 1));
  out.push_back(NamePart(u"MiddleName", 2));
  out.push_back(NamePart(u"LastName", 0));
  out.push_back(NamePart(u"Suffix", 4));
  out.push_back(Text(u"NickName", {"NICKNAME", "X-NICKNAME"}));
  out.push_back({.name = u"FileAs",
                 .kind = Kind::kFileAs,
                 .lines = {.names = {"X-KESTRELON-FILE-AS", "X-EVOLUTION-FILE-AS"}}});
  out.push_back(ForLists({.name = u"Subject", .kind = Kind::kFullName}));
  out.push_back(CompanyPart(u"CompanyName", 0));
  out.push_back(CompanyPart(u"Department", 1));
  out.push_back(Text(u"JobTitle", {"TITLE"}));
  out.push_back(Text(u"Profession", {"ROLE"}));
}

void AddReachability(std::vector<Property>& out) {
  out.push_back(Email(u"Email1Address", 1));
  out.push_back(Email(u"Email2Address", 2));
  out.push_back(Email(u"Email3Address", 3));
  out.push_back(Telephone(u"BusinessTelephoneNumber", kWork, "WORK,VOICE"));
  out.push_back(Telephone(u"Business2TelephoneNumber", kWork, "WORK,VOICE", 2));
  out.push_back(Telephone(u"BusinessFaxNumber", kWork | kFax, "WORK,FAX"));
  out.push_back(Telephone(u"MobileTelephoneNumber", kCell, "CELL,VOICE"));
  out.push_back(Telephone(u"HomeTelephoneNumber", kHome, "HOME,VOICE"));
  out.push_back(Telephone(u"Home2TelephoneNumber", kHome, "HOME,VOICE", 2));
  out.push_back(Telephone(u"HomeFaxNumber", kHome | kFax, "HOME,FAX"));
  out.push_back(Telephone(u"AssistantTelephoneNumber", kAssistant, "X-ASSISTANT"));
  out.push_back(Telephone(u"CarTelephoneNumber", kCar, "CAR,VOICE"));
  out.push_back(Telephone(u"PagerNumber", kPager, "PAGER"));
  out.push_back(Telephone(u"OtherTelephoneNumber", 0, "VOICE"));
  out.push_back(Telephone(u"OtherFaxNumber", kFax, "FAX"));
  out.push_back(Page(u"WebPage", 0, ""));
  out.push_back(Page(u"BusinessHomePage", kWork, "WORK"));
  out.push_back(Page(u"PersonalHomePage", kHome, "HOME"));
}

void AddPeopleAndDays(std::vector<Property>& out) {
  out.push_back(Text(u"ManagerName",
                     {"X-MANAGER", "X-EVOLUTION-MANAGER", "X-MS-MANAGER", "X-ABRELATEDNAMES"},
                     "MANAGER"));
  out.push_back(Text(u"AssistantName",
                     {"X-ASSISTANT", "X-EVOLUTION-ASSISTANT", "X-MS-ASSISTANT", "X-ABRELATEDNAMES"},
                     "ASSISTANT"));
  out.push_back(Text(
      u"Spouse", {"X-SPOUSE", "X-EVOLUTION-SPOUSE", "X-MS-SPOUSE", "RELATED", "X-ABRELATEDNAMES"},
      "SPOUSE"));
  out.push_back(Text(u"Hobby", {"X-HOBBY", "HOBBY", "X-MS-INTERESTS"}));
  out.push_back(Text(u"ReferredBy", {"X-REFERRED-BY"}));
  out.push_back(Day(u"Birthday", {"BDAY"}, ""));
  out.push_back(Day(
      u"Anniversary",
      {"X-ANNIVERSARY", "ANNIVERSARY", "X-EVOLUTION-ANNIVERSARY", "X-MS-ANNIVERSARY", "X-ABDATE"},
      "ANNIVERSARY"));
}

std::vector<Property> MakeProperties() {
  std::vector<Property> out;
  AddNames(out);
  AddReachability(out);
  AddAddress(out,
             {u"BusinessAddress", u"BusinessAddressStreet", u"BusinessAddressCity",
              u"BusinessAddressState", u"BusinessAddressPostalCode", u"BusinessAddressCountry",
              u"BusinessAddressPostOfficeBox"},
             kWork, "WORK");
  AddAddress(out,
             {u"HomeAddress", u"HomeAddressStreet", u"HomeAddressCity", u"HomeAddressState",
              u"HomeAddressPostalCode", u"HomeAddressCountry", u"HomeAddressPostOfficeBox"},
             kHome, "HOME");
  AddAddress(out,
             {u"OtherAddress", u"OtherAddressStreet", u"OtherAddressCity", u"OtherAddressState",
              u"OtherAddressPostalCode", u"OtherAddressCountry", u"OtherAddressPostOfficeBox"},
             kOther, "OTHER");
  AddPeopleAndDays(out);
  out.push_back(ForLists({.name = u"MemberCount", .kind = Kind::kMemberCount}, false));
  out.push_back(ForLists({.name = u"Categories", .kind = Kind::kCategories}));
  out.push_back(ForLists({.name = u"Sensitivity", .kind = Kind::kSensitivity}));
  out.push_back(ForLists(Text(u"Body", {"NOTE"})));
  out.push_back(Text(u"User1", {"X-KESTRELON-USER1"}));
  out.push_back(Text(u"User2", {"X-KESTRELON-USER2"}));
  out.push_back(Text(u"User3", {"X-KESTRELON-USER3"}));
  out.push_back(Text(u"User4", {"X-KESTRELON-USER4"}));
  out.push_back(ForLists(Text(u"BillingInformation", {"X-KESTRELON-BILLING-INFORMATION"})));
  return out;
}

}  // namespace

const std::vector<ContactProperty>& ContactProperties() {
  static const std::vector<ContactProperty> properties = MakeProperties();
  return properties;
}

const ContactProperty* FindContactProperty(StringView name) {
  static const auto names = [] {
    std::vector<String> lower_case;
    for (const ContactProperty& property : ContactProperties()) {
      lower_case.push_back(LowerCase(property.name));
    }
    return lower_case;
  }();
  static const auto by_name = [] {
    std::unordered_map<StringView, const ContactProperty*> map;
    for (size_t i = 0; i < names.size(); ++i) map.emplace(names[i], &ContactProperties()[i]);
    return map;
  }();
  const auto found = by_name.find(name);
  return found == by_name.end() ? nullptr : found->second;
}

}  // namespace kestrelon::desktop
