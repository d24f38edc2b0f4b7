// What a dialer reads from the parameters of a call ("key=value;…") and makes of them.
#pragma once

#include <string>

#include "automation/Text.h"

namespace kestrelon::desktop {

// The built-in dialer's ProgID.
inline constexpr StringView kLinkDialer = u"Kestrelon.Dialer";

// The value of the first item with the key "number", whatever its case; "" without one.
String NumberToDial(StringView parameters);

// "tel:" and the number's digits, led by "+" where the number is. What people write between digits
// for the eye is left out, and so is the "(0)" of "+44 (0)20 …", which is not dialled from abroad.
// Error 5 for what is no telephone number; service codes with "*" and "#", which do other things
// than call, are none.
std::string TelephoneLink(StringView number);

// One argument of a dialer's program: `word` with "{number}" and "{parameters}" replaced, once.
// Error 5 when the replaced text holds a NUL or would be read as an option.
std::string FillPlaceholders(const std::string& word, StringView parameters);

// The first "{name}" of `word` that is no placeholder; "" when there is none.
std::string UnknownPlaceholder(const std::string& word);

}  // namespace kestrelon::desktop
