// The style sheets of HTML on its way into a conversion.
#pragma once

#include <string>
#include <string_view>

namespace kestrelon::desktop {

// The page with its rules as the office suite takes them: one selector each, since it skips groups
// of classes, and cells and rows by their class alone (".total" for "td.total"). Rules for paper
// stand by themselves, those for other media go, and so do comments.
std::string SimplifyStyles(std::string_view html);

}  // namespace kestrelon::desktop
