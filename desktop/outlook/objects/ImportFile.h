// Taking files of other programs into the mailbox.
#pragma once

#include <vector>

#include "desktop/outlook/store/MailFolder.h"

namespace kestrelon::desktop {

// Stores each card, component or message of a .vcf, .ics or .eml file as an item of the default
// folder of its kind, with its bytes as they are. Error 13 for a file that is none of these, or
// holds something that is no item; the errors of desktop/storage for one that cannot be read. All
// of a file is stored or, after an error, nothing.
std::vector<FoundItem> ImportItems(StringView path);

}  // namespace kestrelon::desktop
