// The text of an HTML page, for readers without HTML.
#pragma once

#include <string>
#include <string_view>

namespace kestrelon::desktop {

// UTF-8 in and out, whatever encoding the page declares; lines end in "\n". No markup, styles,
// scripts or title; entities decoded; white space as a browser shows it, table cells parted by
// tabs, list items led by "* ".
std::string HtmlToPlainText(std::string_view html);

// The page with its encoding declarations set to UTF-8, which its bytes are in; everything else
// stays.
std::string DeclareUtf8(std::string_view html);

}  // namespace kestrelon::desktop
