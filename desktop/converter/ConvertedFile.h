// What comes out of a conversion: its signature, and HTML in the form mails and templates need.
#pragma once

#include <string>
#include <string_view>

#include "desktop/converter/Converter.h"

namespace kestrelon::desktop {

// True when `content` starts as a file of the format does and, where the format marks its end, is
// complete.
bool HasSignature(std::string_view content, ConversionFormat format);

// The office suite's UTF-8 HTML as Windows-1252 HTML: the declared charset is changed, characters
// without a place become numeric references (in a style sheet, escapes), and pictures that were not
// loaded are left out, as are dates of a document that has none.
std::string FinishHtml(std::string_view utf8);

}  // namespace kestrelon::desktop
