// Constants of Outlook's object model, under their usual names.
#pragma once

#include <cstdint>

namespace kestrelon {

constexpr int32_t olMailItem = 0;  // OlItemType

}  // namespace kestrelon
