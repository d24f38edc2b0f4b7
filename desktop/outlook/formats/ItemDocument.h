// One item of the mailbox as its file holds it, seen through Outlook's properties.
//
// A document keeps the text of its file. A change rewrites the lines of the property that it is
// about and leaves every other byte where it is: properties, parameters, groups, comments and
// foldings that other programs wrote survive.
//
// Texts of properties break lines by CR LF. A date that is not there is 4501-01-01; a text that is
// not there is "". A put converts as the run-time does (error 13 for what cannot be converted), and
// a put of the value that is there already changes nothing.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "automation/Value.h"

namespace kestrelon::desktop {

// OlObjectClass.
enum class ItemClass : int32_t {
  kAppointment = 26,
  kContact = 40,
  kMail = 43,
  kTask = 48,
  kDistributionList = 69
};

// Outlook's "no date": 4501-01-01.
constexpr Date kNoDate{949998.0};

// A user property: a named value that someone added to an item.
struct UserField {
  String name;       // matched without regard to case, kept as it was written
  int32_t type = 1;  // OlUserPropertyType; 1 is text
  String value;      // as text, whatever the type
};

class ItemDocument {
 public:
  virtual ~ItemDocument() = default;

  virtual ItemClass item_class() const = 0;
  // The file's content as it stands now.
  virtual const std::string& content() const = 0;
  // The UID or Message-ID, UTF-8; "" for none.
  virtual std::string Uid() const = 0;

  // `property` is the name in Outlook's object model in lower case ("firstname"). Error 438 for one
  // that the item does not have, 440 on a put of one that is read only.
  virtual bool Has(StringView property) const = 0;
  // The names in Outlook's spelling ("FirstName"), in the order in which a user wants to see them.
  virtual const std::vector<StringView>& PropertyNames() const = 0;
  virtual Value Get(StringView property) const = 0;
  virtual void Put(StringView property, const Value& value) = 0;

  // In the order of the file.
  virtual std::vector<UserField> UserFields() const = 0;
  virtual std::optional<UserField> FindUserField(StringView name) const = 0;
  // Replaces the field of that name or adds one.
  virtual void PutUserField(const UserField& field) = 0;
  virtual void RemoveUserField(StringView name) = 0;
};

}  // namespace kestrelon::desktop
