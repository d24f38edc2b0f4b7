// "Outlook.Application": one Outlook for the process, over a mailbox folder in standard formats.
//
//   Application - Explorer - Selection
//        |
//    NameSpace - Folder - Folders
//                   |
//                 Items - Item - UserProperties, ItemProperties
//
// An Item lies in the mailbox, or will when it is saved; a MailItem is a mail being written, an
// unsent draft in Drafts.
#pragma once

#include "automation/DispatchObject.h"

namespace kestrelon::desktop {

// Starts Outlook, or gives the one that runs.
Object CreateOutlookApplication();

// The Outlook that the user has open or that this process has started; Nothing without either.
Object RunningOutlookApplication();

}  // namespace kestrelon::desktop
