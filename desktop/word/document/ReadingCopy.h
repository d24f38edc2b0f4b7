// A document as it reads, for converters that print whatever is in the file: tracked deletions and
// comments are the business of those who write a letter, not of those who get it.
#pragma once

#include <string>

#include "desktop/word/package/Package.h"

namespace kestrelon::desktop::word {

// Takes out of the main part, the headers, footers and notes what was deleted or moved away (rows
// of tables included) and the anchors of comments, and out of the package the parts of the
// comments. Insertions and deleted paragraph marks stay. Error 5792 for a damaged part.
void LeaveOnlyWhatIsRead(Package& package, const std::string& main_part);

}  // namespace kestrelon::desktop::word
