// Mails that lie in the mailbox: .eml files of any program.
//
// Headers and bodies are read; of the properties only what does not touch the message itself can be
// put. User properties are header fields X-Kestrelon-Property before all others, so that not a byte
// of a signed message changes.
#pragma once

#include <memory>
#include <string>

#include "desktop/outlook/formats/ItemDocument.h"

namespace kestrelon::desktop {

// Any bytes are a message.
std::unique_ptr<ItemDocument> ReadMessage(std::string content);

}  // namespace kestrelon::desktop
