// `kestrelon members`: the interface table, for reading and for programs.
#pragma once

#include <ostream>

#include "Control/Interface.h"

namespace kestrelon::commandline {

// The interface's word for a type ("String", "XMLDocument", "none").
const char* TypeWord(ParameterType type);

// Returns the exit status.
int PrintMembers(std::ostream& out, bool json);

}  // namespace kestrelon::commandline
