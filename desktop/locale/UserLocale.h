// What the user's locale says about dates, money and paper.
#pragma once

#include <cstdint>
#include <string>

#include "automation/Text.h"

namespace kestrelon::desktop {

// "0" month-day-year, "1" day-month-year, "2" year-month-day; "1" when the user's locale is not
// installed.
std::string ShortDateOrder();

// The currency symbol, the three-letter code where the locale has no symbol, "" where it has
// neither or is not installed.
String CurrencySymbol();

// In millimetres.
struct PaperSize {
  uint32_t width = 210;
  uint32_t height = 297;
};
// A4 when the user's locale is not installed.
PaperSize UserPaper();

// The signs that numbers are written with. A locale that is not installed, or that groups no
// thousands, has "," for them ("." where "," is the decimal point).
struct NumberSigns {
  String decimal_point = u".";
  String thousands_separator = u",";
  String currency;  // as CurrencySymbol gives it
};
NumberSigns UserNumberSigns();

// The order of a date format of strftime ("%d/%m/%y").
std::string OrderOfDateFormat(const std::string& format);

}  // namespace kestrelon::desktop
