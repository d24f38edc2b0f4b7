// Error numbers that only files have.
#pragma once

#include <cstdint>

namespace kestrelon::desktop {

constexpr int32_t kBadFileMode = 54;
constexpr int32_t kFileAlreadyExists = 58;

}  // namespace kestrelon::desktop
