// The lines of a quote in a table of the Word template.
#pragma once

#include "automation/DispatchObject.h"

namespace kestrelon {

// Puts line i of the quote into row i + 1 of the table, adding the rows that it lacks. A column is
// filled when its header cell, in any case, is the name of a quote field or its tag (its label
// where it has no tag), either plain or as "<name>"; of several such fields the last one counts.
// Columns that no field names, and rows below the lines, stay as they are. A header cell that is
// written "<name>" becomes the field's label, or its name where it has none: what a customer reads
// is no tag. `step` tells how far it came. Failures are the caller's.
void FillQuoteTable(const Object& wordTable, const Object& xmlDoc, int16_t lines, String& step);

}  // namespace kestrelon
