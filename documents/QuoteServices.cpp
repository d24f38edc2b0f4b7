#include "documents/QuoteServices.h"

namespace kestrelon {

String TextToHtml(StringView /*text*/) { throw AutomationError(kNotImplemented); }

String GetFolderFromPath(StringView /*path*/) { throw AutomationError(kNotImplemented); }

String GetFileNameFromPath(StringView /*path*/) { throw AutomationError(kNotImplemented); }

String MakeSafeFileName(String& /*text*/) { throw AutomationError(kNotImplemented); }

void DeleteFileQuietly(ControlContext& /*context*/, const String& /*path*/) {
  throw AutomationError(kNotImplemented);
}

String NullToString(const Value& /*value*/) { throw AutomationError(kNotImplemented); }

}  // namespace kestrelon
