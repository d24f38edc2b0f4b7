// What becomes of a value that a script puts into a cell.
#pragma once

#include "automation/Value.h"
#include "desktop/excel/Sheet.h"
#include "desktop/locale/UserLocale.h"

namespace kestrelon::desktop::excel {

// Puts `value` into the cell, which stays bold. A text that reads as a number of the user's locale,
// with thousands separators, as a percentage or with the currency symbol, is that number and keeps
// its look; one of more than 15 digits, which no number holds, stays text. After a leading
// apostrophe, which is no part of it, any text is text.
// Error 1004 for a formula (nothing here calculates), a text of more than 32,767 characters, a date
// before 1900 and a number that is none; error 13 for an array.
void Enter(const Value& value, const NumberSigns& signs, Cell& cell);

}  // namespace kestrelon::desktop::excel
