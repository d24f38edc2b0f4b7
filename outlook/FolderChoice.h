// The way to the Outlook folder that the page asks for by its entry id.
#pragma once

#include "Control/ObjectState.h"

namespace kestrelon {

// Starts Outlook, or joins the running one, and takes its namespace. False when that fails, which a
// message box tells.
bool OpenOutlook(ControlContext& context);

// The folder with the entry id `folder_id`, which is cleared of every "#" for the caller too; the
// user's default folder of that kind when it is "". The namespace reference is set already.
Object ChooseFolder(ControlContext& context, int32_t default_folder, String& folder_id);

}  // namespace kestrelon
