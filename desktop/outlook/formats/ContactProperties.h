// Outlook's properties of contacts and distribution lists, and the lines of a vCard that hold them.
#pragma once

#include <vector>

#include "automation/Text.h"
#include "desktop/outlook/formats/Card.h"

namespace kestrelon::desktop {

struct ContactProperty {
  enum class Kind {
    kNamePart,     // of N
    kFullName,     // FN
    kFileAs,       // how the contact is sorted; follows the name unless it was set
    kText,         // a line of its own
    kCompanyPart,  // of ORG
    kAddressPart,  // of ADR
    kStreet,       // ADR's street, below its extended address
    kAddress,      // ADR as one text, read only
    kTelephone,    // a text or a tel: URI
    kUri,          // text without escapes
    kDate,         // a day
    kSensitivity,  // CLASS
    kCategories,   // CATEGORIES
    kMemberCount,  // of a distribution list, read only
  };

  StringView name;  // in Outlook's spelling
  Kind kind;
  LineSet lines = {};
  int32_t slot = 1;
  size_t part = 0;        // of a structured value
  bool of_lists = false;  // distribution lists have it as well
  bool of_contacts = true;
};

// In the order in which a user wants to see them.
const std::vector<ContactProperty>& ContactProperties();
// By its name in lower case; nullptr for none.
const ContactProperty* FindContactProperty(StringView name);

}  // namespace kestrelon::desktop
