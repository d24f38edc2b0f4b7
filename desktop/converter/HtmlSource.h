// HTML on its way into a conversion.
#pragma once

#include <string>
#include <string_view>

namespace kestrelon::desktop {

// The page as the office suite reads it right. A page that does not say its character set, or says
// one that it cannot have, is UTF-8 or else ANSI text, as scripts write it; it becomes UTF-8. Left
// out are the headers that a page carries for HTTP and the marks of when it was made and changed:
// the office suite refuses whole pages for them, and writes such marks itself. The paper is the
// user's unless the page says otherwise.
std::string PrepareHtml(std::string_view html);

}  // namespace kestrelon::desktop
