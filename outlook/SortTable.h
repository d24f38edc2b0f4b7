// The work table that lists are sorted in.
#pragma once

#include "Control/ObjectState.h"

namespace kestrelon {

struct SortRow {
  String key;
  String payload;
};
using SortTable = std::vector<SortRow>;

// Sorts the rows by their keys in the text order of the user's language, by an XSLT transformation
// whose stylesheet stays behind as "Kestrelon.xsl" in the temporary folder. Keys come back without
// the white space around them.
void SortAlphabetically(ControlContext& context, SortTable& table);

}  // namespace kestrelon
