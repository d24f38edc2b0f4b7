#include "outlook/FolderChoice.h"

namespace kestrelon {

Object ChooseFolder(ControlContext& context, int32_t default_folder, String& folder_id) {
  const Object& mapi_namespace = context.state.mapi_namespace;
  const Object folder = mapi_namespace.CallChild(u"GetDefaultFolder", default_folder);
  if (folder_id.empty()) return folder;
  // NOTE: the ids come out of lists that are parted by "#~", and a page may cut them anywhere.
  folder_id = ReplaceAll(folder_id, u"#", u"");
  return mapi_namespace.CallChild(u"GetFolderFromID", folder_id);
}

}  // namespace kestrelon
