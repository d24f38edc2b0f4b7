// Word's own error numbers and texts, as far as its objects here raise them.
#pragma once

#include <cstdint>

#include "automation/AutomationError.h"
#include "automation/Text.h"

namespace kestrelon::desktop::word {

enum WordErrorNumber : int32_t {
  kBadParameter = 4120,
  kCommandFailed = 4198,
  kValueOutOfRange = 4608,
  kCannotReadTemplate = 5151,
  kFileNotOpened = 5174,
  kObjectDeleted = 5825,
  kParameterTooLong = 5854,
  kNoSuchMember = 5941,
};

inline AutomationError BadParameter(const String& what) {
  return AutomationError(kBadParameter, u"Bad parameter: " + what);
}
inline AutomationError ValueOutOfRange() {
  return AutomationError(kValueOutOfRange, u"Value out of range.");
}
inline AutomationError ParameterTooLong() {
  return AutomationError(kParameterTooLong, u"String parameter too long.");
}
inline AutomationError ObjectDeleted() {
  return AutomationError(kObjectDeleted, u"Object has been deleted.");
}
inline AutomationError NoSuchMember() {
  return AutomationError(kNoSuchMember, u"The requested member of the collection does not exist.");
}

}  // namespace kestrelon::desktop::word
