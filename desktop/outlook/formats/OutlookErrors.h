// The errors of Outlook's object model that are not the run-time's own, and the rule by which its
// collections are indexed.
#pragma once

#include "automation/AutomationError.h"
#include "automation/Value.h"

namespace kestrelon::desktop {

enum OutlookErrorNumber : int32_t {
  kArrayIndexOutOfBounds = static_cast<int32_t>(0x80020009),
  kItemChanged = static_cast<int32_t>(0x80040109),
  kItemDeleted = static_cast<int32_t>(0x8004010A),
  kObjectNotFound = static_cast<int32_t>(0x8004010F),
};

inline AutomationError ArrayIndexOutOfBounds() {
  return AutomationError(kArrayIndexOutOfBounds, u"Array index out of bounds.");
}

inline AutomationError ObjectNotFound() {
  return AutomationError(kObjectNotFound,
                         u"The attempted operation failed.  An object could not be found.");
}

// The place of `index`, which counts from 1, in a vector of `count` elements.
inline size_t PlaceInCollection(const Value& index, size_t count) {
  const int32_t number = index.ToLong();
  if (number < 1 || static_cast<size_t>(number) > count) throw ArrayIndexOutOfBounds();
  return static_cast<size_t>(number) - 1;
}

}  // namespace kestrelon::desktop
