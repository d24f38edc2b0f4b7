// What stands for Outlook's window: whether the user has it open, and what is selected in it. Kept
// in the mailbox (".kestrelon/"), so that every program sees the same.
#pragma once

#include <vector>

#include "automation/Text.h"

namespace kestrelon::desktop {

bool IsOutlookOpen();
void MarkOutlookOpen(bool is_open);

// Entry ids of the user's own mailbox, in the order of selecting. Those of items that are gone are
// the caller's to leave out.
std::vector<String> SelectedItems();
void SelectItems(const std::vector<String>& entry_ids);

}  // namespace kestrelon::desktop
