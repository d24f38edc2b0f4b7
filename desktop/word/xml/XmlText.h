// Characters of XML: from the bytes of a part to UTF-16 and back.
#pragma once

#include <string>
#include <string_view>

#include "automation/Text.h"

namespace kestrelon::desktop::word {

// Appends the characters of `raw` (character data of a leaf element: text, references, CDATA
// sections; comments and anything else between angle brackets is skipped). Tabs and line ends
// become blanks, as Word reads them. Error 5792 for malformed UTF-8 or an unknown reference.
void DecodeXml(std::string_view raw, String& text);

// The value of an attribute as it stands between its quotes. Error 5792 likewise.
std::string DecodeXmlAttribute(std::string_view raw);

// Appends `text` as UTF-8 with &, < and > escaped.
void EncodeXml(StringView text, std::string& xml);

// `text` without what XML forbids: control characters but tab and line ends, lone surrogates,
// U+FFFE and U+FFFF.
String WithoutForbidden(StringView text);

}  // namespace kestrelon::desktop::word
