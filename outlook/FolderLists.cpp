#include "outlook/FolderLists.h"

namespace kestrelon {

String GetContactFolderList(ControlContext&, String&) { throw AutomationError(kNotImplemented); }

String GetTaskFolderList(ControlContext&) { throw AutomationError(kNotImplemented); }

String GetFolderContactItems(ControlContext&, String&) { throw AutomationError(kNotImplemented); }

String GetFolderTaskItems(ControlContext&, String&) { throw AutomationError(kNotImplemented); }

}  // namespace kestrelon
