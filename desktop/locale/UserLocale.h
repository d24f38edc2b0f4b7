// What the user's locale says about dates and money.
#pragma once

#include <string>

#include "automation/Text.h"

namespace kestrelon::desktop {

// "0" month-day-year, "1" day-month-year, "2" year-month-day; "1" when the user's locale is not
// installed.
std::string ShortDateOrder();

// The currency symbol, the three-letter code where the locale has no symbol, "" where it has
// neither or is not installed.
String CurrencySymbol();

// The order of a date format of strftime ("%d/%m/%y").
std::string OrderOfDateFormat(const std::string& format);

}  // namespace kestrelon::desktop
