// Finding the contact that a record of the CRM stands for, in a folder that has been walked once.
#pragma once

#include "Control/ObjectState.h"

namespace kestrelon {

// Reads the CRM id, the names and the e-mail addresses of every item of `folder`; items that are no
// contacts count with their CRM id alone.
ContactMatchIndex BuildMatchIndex(const Object& folder);

// What a record is looked up by.
struct ContactKey {
  const String& id;
  const String& first_name;
  const String& last_name;
  const String& email;
};

struct IndexMatch {
  enum Kind { kNone, kById, kByNameAndEmail };
  Kind kind = kNone;
  size_t row = 0;
};

// The first row that matches in either way, without regard to case: by the id, bare or in braces,
// or, with `by_name`, by both names and one of the e-mail addresses; then none of the three is
// empty. A row that matches in both ways does by its id.
IndexMatch FindFirstMatch(const ContactMatchIndex& index, const ContactKey& key, bool by_name);

// Whether a stored CRM id is `id`, bare or in braces, without regard to case.
bool IsSameContactId(StringView stored, StringView id);

}  // namespace kestrelon
