// Word's own errors, as far as the text of a document raises them.
#pragma once

#include "automation/AutomationError.h"

namespace kestrelon::desktop::word {

inline AutomationError ValueOutOfRange() { return {4608, u"Value out of range."}; }
inline AutomationError ObjectDeleted() { return {5825, u"Object has been deleted."}; }
inline AutomationError ParameterTooLong() { return {5854, u"String parameter too long."}; }
inline AutomationError CannotEditRange() { return {5904, u"Cannot edit Range."}; }
inline AutomationError NoSuchMember() {
  return {5941, u"The requested member of the collection does not exist."};
}

}  // namespace kestrelon::desktop::word
