// Quotes in Excel.
#pragma once

#include "Control/ObjectState.h"
#include "Control/PageDocuments.h"

namespace kestrelon {

// Puts a table of the page into a new, visible workbook, its header row first: the first table
// whose first row has all columns that strColumns names, separated by ",", in any case and however
// the header is wrapped; those columns in that order, or every column of the first table with a
// caption in its first row when it is "". A cell that spans several columns or rows stands in the
// first of them. Numbers are left to Excel; a text that it would take for a formula is written as
// text. True when it was written; False, and no Excel, when the page has no such table. No Excel,
// and a failure, are told in a message box; after a failure Excel is quit.
bool ExcelQuote(ControlContext& context, HtmlDocument& oHTMLDoc, String& strColumns);

}  // namespace kestrelon
