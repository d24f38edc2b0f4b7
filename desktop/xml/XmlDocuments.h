// The documents that pages and members exchange: MSXML's DOM on libxml2, and a page's own HTML
// document.
//
// Parsing follows the DOM's defaults: text of white space only is dropped, comments and processing
// instructions are child nodes, the XML declaration is the processing instruction "xml". A DOCTYPE
// is refused, and with it every entity but the predefined ones; nothing is fetched. Elements nest
// at most 256 deep, one text is at most 10 MB long. Node objects keep their document alive.
//
// Stylesheets are XSLT 1.0 and reach nothing but their source; text sorts in the order of the
// user's language.
#pragma once

#include <string_view>

#include "automation/DispatchObject.h"

namespace kestrelon::desktop {

// A new, empty DOMDocument.
Object CreateXmlDocument();

// The document of `bytes`, in the encoding that they declare (UTF-8 when they declare none).
// Error 5 with line, column and reason when they are not well-formed.
Object ParseXmlDocument(std::string_view bytes);

// A page's document; markup of any quality. The encoding is the declared one, else UTF-8 where the
// bytes are valid UTF-8, else Windows-1252. `documentElement.outerHTML` gives the markup back,
// `getElementById` an element by its exact id, or Nothing, with the `Value` of a form field;
// `getElementsByTagName` gives the elements of a name, with the `rows` of a table, the `cells` of a
// row and the `innerText` of each. An empty page has an empty `html` element, as in a browser.
// Error 5 when elements nest deeper than 256.
Object ParseHtmlDocument(std::string_view bytes);

}  // namespace kestrelon::desktop
