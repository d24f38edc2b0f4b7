// The members of the default dispatch interface `_KestrelonCtrl2005`. This is the only list of
// them: every front end is driven by it.
#pragma once

#include <span>

#include "Control/Interface.h"

namespace kestrelon {

// All 54 members, in the order of their dispatch ids but for the property, which comes first.
std::span<const Member> InterfaceTable();

// The member of that name, without regard to case; nullptr when there is none.
const Member* FindMember(StringView name);

// The place of a parameter in its member's list, by name without regard to case.
std::optional<size_t> FindParameter(const Member& member, StringView name);

}  // namespace kestrelon
