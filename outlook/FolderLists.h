// The folders and items of Outlook for the page's pick lists: NAME#~ENTRYID#~ pairs.
#pragma once

#include "Control/ObjectState.h"

namespace kestrelon {

// The user's contacts and their subfolders; without the empty ones when `strImport` is "import".
// The last "~" is missing when there are subfolders: the page's parser expects it so.
String GetContactFolderList(ControlContext& context, String& strImport);
String GetTaskFolderList(ControlContext& context);

// The contacts of a folder by full name, those without a last name left out; the folder's tasks in
// its own order. `foldertosearch` is an entry id, cleared of "#", or "" for the default folder.
String GetFolderContactItems(ControlContext& context, String& foldertosearch);
String GetFolderTaskItems(ControlContext& context, String& foldertosearch);

}  // namespace kestrelon
