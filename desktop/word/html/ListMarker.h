// What stands before the items of a list.
#pragma once

#include <string>

#include "automation/Text.h"

namespace kestrelon::desktop::word::html {

// With the tab behind it; "" where the style is "none". `style` is a CSS style or the type of an
// old list ("a", "I", …).
String ListMarker(bool is_ordered, int32_t number, const std::string& style);

}  // namespace kestrelon::desktop::word::html
