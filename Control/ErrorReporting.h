// How members tell the user what happened.
#pragma once

#include <optional>

#include "Control/ObjectState.h"

namespace kestrelon {

// Flags of a message box.
constexpr int32_t kOkOnly = 0;
constexpr int32_t kExclamation = 48;
constexpr int32_t kInformation = 64;

// Shows a message box; without a title the desktop shows its default one.
void ShowMessage(ControlContext& context, const String& text, int32_t flags = kOkOnly,
                 const std::optional<String>& title = std::nullopt);

// One stage of a member: true when `stage` ran through; a failure is handed to `report`.
template <typename Stage, typename Report>
bool Attempt(const Stage& stage, const Report& report) {
  try {
    stage();
    return true;
  } catch (const AutomationError& error) {
    report(error);
    return false;
  }
}

// Shows exactly what the page asks for. 0 for the buttons 48 and 64, whatever was pressed;
// otherwise the number of the button pressed.
int16_t CreateMessage(ControlContext& context, String& strMessage, int16_t& intButtons,
                      String& strTitle);

}  // namespace kestrelon
