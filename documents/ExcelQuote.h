// Quotes in Excel.
#pragma once

#include "Control/ObjectState.h"
#include "Control/PageDocuments.h"

namespace kestrelon {

// Puts a table of the page into a new, visible workbook, its header row first: the first table
// whose header row has all columns that strColumns names, separated by "," and in any case; those
// columns in that order, or every column when it is "". True when a row was written. No Excel is
// told in a message box.
bool ExcelQuote(ControlContext& context, HtmlDocument& oHTMLDoc, String& strColumns);

}  // namespace kestrelon
