#include "Control/ErrorReporting.h"

namespace kestrelon {

void ShowMessage(ControlContext& context, const String& text, int32_t flags,
                 const std::optional<String>& title) {
  context.platform.ShowMessageBox(text, flags, title);
}

int16_t CreateMessage(ControlContext& context, String& strMessage, int16_t& intButtons,
                      String& strTitle) {
  const int32_t button = context.platform.ShowMessageBox(strMessage, intButtons, strTitle);
  const bool only_informs = intButtons == kExclamation || intButtons == kInformation;
  return only_informs ? int16_t{0} : static_cast<int16_t>(button);
}

}  // namespace kestrelon
