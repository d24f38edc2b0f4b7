// Ids of folders and items: upper-case hexadecimal digits of "1f:" + the folder's path in its
// mailbox ("1f:Contacts/Friends"), or "1i:" + the item's. An id comes from web pages too: one that
// does not stand for a plain visible path below the mailbox is none.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "automation/Text.h"

namespace kestrelon::desktop {

std::string ToHex(std::string_view bytes);
// Digits of either case; nothing for any other text.
std::optional<std::string> FromHex(std::string_view digits);
std::optional<std::string> FromHex(StringView digits);

enum class EntryType { kFolder, kItem };

String ToEntryId(EntryType type, const std::filesystem::path& relative);
// Without "..", hidden names, empty pieces, or another user's mailbox.
std::optional<std::filesystem::path> PathFromEntryId(EntryType type, StringView entry_id);

}  // namespace kestrelon::desktop
