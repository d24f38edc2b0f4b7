// What a node is called, says and looks like: names, values, text and markup.
#pragma once

#include <libxml/tree.h>

#include <string>

#include "automation/Value.h"

namespace kestrelon::desktop {

// "#document", "#text", "p:name" ...
String NodeName(const xmlNode& node);
// A node whose text is its own: text, CDATA section, comment, processing instruction.
bool IsCharacterData(const xmlNode& node);
String AttributeValue(const xmlNode& attribute);
// All text inside, without the white space around it; of an element or a document, comments and
// processing instructions left out.
String NodeText(const xmlNode& node);
// The markup of a node. In a document, each top node ends its line.
String NodeMarkup(const xmlNode& node);
// The attribute named as in the markup, prefix included; nullptr when absent.
const xmlAttr* FindAttribute(const xmlNode& element, StringView name);
// UTF-8 to put into a node. Error 5 for a character that XML cannot hold.
std::string CheckedContent(const Value& value);

}  // namespace kestrelon::desktop
