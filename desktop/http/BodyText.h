// The text of an answer's bytes.
#pragma once

#include <string_view>

#include "automation/Text.h"

namespace kestrelon::desktop {

// Decodes by a byte order mark, else by the charset that the Content-Type names, else as UTF-8.
// What cannot be decoded becomes U+FFFD. ISO-8859-1 and ASCII are read as ANSI, which they are
// mostly meant for.
String DecodeBody(std::string_view body, std::string_view content_type);

}  // namespace kestrelon::desktop
