// HTML on its way into a conversion.
#pragma once

#include <string>
#include <string_view>

namespace kestrelon::desktop {

// The page as the office suite reads it right. A page that does not say its character set, or says
// UTF-8 and is not, is ANSI text, as scripts write it; it becomes UTF-8. The marks of when the page
// was made and changed are left out: the office suite refuses the whole page for one without a
// date, and such it writes itself. The paper is the user's unless the page says otherwise.
std::string PrepareHtml(std::string_view html);

}  // namespace kestrelon::desktop
