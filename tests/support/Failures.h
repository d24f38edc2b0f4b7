// What an action fails with.
#pragma once

#include "automation/AutomationError.h"

namespace kestrelon {

// The failure; one with number 0 when there is none.
template <typename Action>
AutomationError FailureOf(const Action& action) {
  return IgnoreFailures(action).value_or(AutomationError(0, u"no error"));
}

template <typename Action>
int32_t NumberOf(const Action& action) {
  return FailureOf(action).number();
}

}  // namespace kestrelon
