// Contacts and distribution lists as vCards: 2.1, 3.0 and 4.0 are read and changed in their own
// version, new ones are 3.0.
//
// Properties of Outlook without a place in the standard are X- properties; user properties are
// X-KESTRELON-PROPERTY;X-NAME=name;X-TYPE=type:value.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "desktop/outlook/formats/ItemDocument.h"

namespace kestrelon::desktop {

// What the content of a .vcf file is: a contact, a distribution list, or no card at all. Cheap: it
// looks, it does not parse.
std::optional<ItemClass> ClassOfCard(std::string_view content);

// Of several cards in one file, the first is the item; the others stay as they are. nullptr when
// there is none. Any bytes are taken: UTF-8 with or without a mark, UTF-16 with one, and what is
// not valid UTF-8 and declares no character set as Windows-1252.
std::unique_ptr<ItemDocument> ReadContact(std::string content);

// An empty contact with a fresh UID.
std::unique_ptr<ItemDocument> NewContact();

// The cards of a file, each as the content of a file of its own, without a change to its bytes.
std::vector<std::string> SplitCards(std::string_view content);

// The card for others: without what only this mailbox means (user properties and the like).
std::string CardToSend(const ItemDocument& contact);

}  // namespace kestrelon::desktop
