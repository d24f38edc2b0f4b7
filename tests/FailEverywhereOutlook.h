#pragma once

#include <set>

#include "automation/Text.h"

namespace kestrelon::testing {

// The Outlook members that are made to fail at each of their calls on the scripted desktop.
std::set<StringView> OutlookMembers();

}  // namespace kestrelon::testing
