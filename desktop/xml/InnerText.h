// What an element of a page says, as the reader sees it.
#pragma once

#include <libxml/tree.h>

#include "automation/Text.h"

namespace kestrelon::desktop {

// The text inside, with one blank for each run of white space and none around it; CR LF for <br>
// and between blocks, an empty line around paragraphs, a tab between the cells of a row. Texts of
// <pre> stand as they are; scripts, styles and comments are left out. No-break spaces stay.
String InnerText(const xmlNode& element);

}  // namespace kestrelon::desktop
