// Ids of new items.
#pragma once

#include <string>

namespace kestrelon::desktop {

// A random UUID: 36 lower-case characters.
std::string NewUid();

}  // namespace kestrelon::desktop
