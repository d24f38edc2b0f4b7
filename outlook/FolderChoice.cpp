#include "outlook/FolderChoice.h"

#include "Control/ErrorReporting.h"

namespace kestrelon {

bool OpenOutlook(ControlContext& context) {
  ObjectState& state = context.state;
  const auto open = [&] {
    state.outlook_application = context.platform.CreateObject(u"Outlook.Application");
    state.mapi_namespace = state.outlook_application.CallChild(u"GetNamespace", u"MAPI");
  };
  return Attempt(open, [&](const AutomationError&) {
    ShowMessage(context, u"Outlook does not appear to be installed");
  });
}

Object ChooseFolder(ControlContext& context, int32_t default_folder, String& folder_id) {
  const Object& mapi_namespace = context.state.mapi_namespace;
  const Object folder = mapi_namespace.CallChild(u"GetDefaultFolder", default_folder);
  if (folder_id.empty()) return folder;
  // NOTE: the ids come out of lists that are parted by "#~", and a page may cut them anywhere.
  folder_id = ReplaceAll(folder_id, u"#", u"");
  return mapi_namespace.CallChild(u"GetFolderFromID", folder_id);
}

}  // namespace kestrelon
