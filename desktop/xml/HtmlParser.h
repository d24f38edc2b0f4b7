// Parsing HTML of any quality.
#pragma once

#include <libxml/tree.h>

#include <memory>
#include <string_view>

#include "automation/Text.h"

namespace kestrelon::desktop {

using HtmlMarkup = std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)>;

// The encoding is the declared one, else UTF-8 where the bytes are valid UTF-8, else Windows-1252;
// ANSI bytes in a page that says UTF-8 are read as such.
// There is always a root element; nothing is fetched. Error 5 when elements nest deeper than 256
// and over 1 GiB; it calls the input `what` ("The page").
HtmlMarkup ParseHtml(std::string_view bytes, StringView what);

}  // namespace kestrelon::desktop
