// Replacing the entries of the tag table in an open Word document.
#pragma once

#include "Control/ObjectState.h"

namespace kestrelon {

// Moves the selection of Word to the next occurrence of `text` in any case, from the top again
// after the end. False when there is none.
bool FindAndSelect(const Object& selection, const String& text);

// Replaces entry `index` of the tag table in `target`: in its main text through the selection of
// `wordApp`, and, when `replaceInHeader` is exactly "true" and the value is shorter than 255
// characters, in every other story. A blank value removes the tag, in a table together with the
// character before it. An entry without a tag only selects the target.
//
// A failure of the first selection is the caller's; every other is reported in a message box. A
// value that contains its own tag never ends.
void ReplaceOneTag(ControlContext& context, const Object& target, const Object& wordApp,
                   int16_t index, const String& replaceInHeader);

}  // namespace kestrelon
