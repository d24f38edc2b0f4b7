// The folder that holds the user's mailbox.
//
// $KESTRELON_MAILBOX, else kestrelon/mailbox in $XDG_DATA_HOME (~/.local/share). Folders are
// created on first use, for the user alone.
#pragma once

#include <filesystem>

#include "automation/AutomationError.h"
#include "automation/Text.h"

namespace kestrelon::desktop {

// Error 76 when no variable says where the mailbox is.
std::filesystem::path MailboxFolder();

// Makes the folder and those above it where they are missing, for the user alone.
void MakeFolder(const std::filesystem::path& folder);

// `error` with the folder and what to do in its description; `subject` ("The mail") is what could
// not be saved there.
AutomationError SavingError(const AutomationError& error, StringView subject,
                            const std::filesystem::path& folder);

// In the mailbox: holds those of other users.
inline constexpr const char* kSharedFolder = "Shared";

// 32 random hexadecimal digits.
String NewEntryId();

}  // namespace kestrelon::desktop
