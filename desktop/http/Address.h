// Addresses of the web as callers write them.
#pragma once

#include <string>

#include "automation/Text.h"

namespace kestrelon::desktop {

// What stands before "://", in lower case; "" where an address has none.
std::string SchemeOf(StringView url);

// The address in UTF-8, every byte of its path and query that an address cannot carry
// percent-encoded. What is encoded already stays, and so does the name of the server.
std::string AddressOnTheWire(StringView url);

}  // namespace kestrelon::desktop
