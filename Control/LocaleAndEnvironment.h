// The user's locale and temporary folder, and the control's version.
#pragma once

#include "Control/ObjectState.h"

namespace kestrelon {

// The order of the short date: "0" month-day-year, "1" day-month-year, "2" year-month-day; "1"
// after a run-time error.
String dateFormatOrder(ControlContext& context);

// The user's currency symbol. Error 5 to the caller when the locale cannot be asked.
String currencyFormat(ControlContext& context);

// "major.minor.revision" of the component's file version (the third field is left out); "Unknown"
// after a run-time error.
String GetVersion(ControlContext& context);

// The text before the first NUL; "1" for a text without one: the operation serves dateFormatOrder,
// whose fallback is day-month-year.
String TrimAtNull(const String& text);

// The user's temporary folder with its trailing separator; "" where the system has none. A path
// over 255 characters comes back as that many blanks. Failures are the caller's.
String ReadTempPath(ControlContext& context);

// The same; "" after a run-time error.
String GetTheTempPath(ControlContext& context);

}  // namespace kestrelon
