// Content controls that show a value kept elsewhere in the package: on opening, the value wins over
// the text. So new text of such a control has to reach the value.
#pragma once

#include "desktop/word/document/DocumentPart.h"
#include "desktop/word/package/Package.h"

namespace kestrelon::desktop::word {

// Sets the values that the touched controls of `part` are bound to. A control whose value cannot be
// found, or can hold no plain text, is unbound, so that its new text stays.
void UpdateBoundData(Package& package, const std::string& main_part, DocumentPart& part);

}  // namespace kestrelon::desktop::word
