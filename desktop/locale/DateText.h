// Dates as users type them.
#pragma once

#include <string>

#include "automation/Date.h"

namespace kestrelon::desktop {

// Reads a date by the habits of the user's locale. Taken are, besides what ParseDate takes:
//   day, month and year, parted by one of "/", ".", "-" or by blanks, in the order of the locale's
//     short date; a month above 12 is taken for the day; a year of four digits may stand first,
//     then month and day follow;
//   an English month name or its abbreviation instead of a number ("21 Nov 2026", "May 3, 26");
//   then an optional time, h:mm or h:mm:ss, with or without AM or PM.
// Years of two digits are 2000 to 2029 and 1930 to 1999. Error 13 for any other text.
Date DateFromUserText(StringView text);

// The same with the order given as ShortDateOrder has it.
Date DateFromText(StringView text, const std::string& order);

}  // namespace kestrelon::desktop
