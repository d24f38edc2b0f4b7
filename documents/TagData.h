// From the record XML of a page to the tag table of a letter or quote.
#pragma once

#include "Control/ObjectState.h"

namespace kestrelon {

// The attribute of that exact name, with every mis-decoded pound sign repaired; "" when the element
// has none. A failing DOM call is the caller's.
String GetNodeAttribute(const Object& node, StringView attribute_name);

// A Word cell's text without its end marks: control characters become blanks, then it is trimmed.
String CleanCellText(StringView text);

// Fills the tag table from a record XML rooted at "Data". Reports its own failures in a message box
// and returns; what was entered before the failure stays.
void ExtractTagData(ControlContext& context, const Object& xmlDoc);

// Fills the tag table from a record XML rooted at "record", where "displayvalue" is preferred to
// "value". Failures are the caller's.
void ExtractRecordTagData(ControlContext& context, const Object& xmlDoc);

// Writes one table row per record of the list and replaces the header row's tags by the captions of
// the first record. A column takes part when its header cell holds "<list_key>". Failures are the
// caller's; a list without records fails at the captions.
void FillListTable(const Object& wordTable, const Object& listNode);

}  // namespace kestrelon
