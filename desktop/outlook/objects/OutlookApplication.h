// "Outlook.Application": one Outlook for the process, over a mailbox folder in standard formats.
//
// A mail that is displayed or saved is an unsent draft, an .eml file in the mailbox's Drafts.
#pragma once

#include "automation/DispatchObject.h"

namespace kestrelon::desktop {

// Starts Outlook, or gives the one that runs.
Object CreateOutlookApplication();

// The Outlook that this process has started; Nothing before that.
Object RunningOutlookApplication();

}  // namespace kestrelon::desktop
