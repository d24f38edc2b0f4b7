// What no letter program can do without: inflating every part of the template and deflating it
// again (zlib, level 6).
#pragma once

#include <string>

namespace kestrelon::benchmarks {

// Does it once and returns the bytes that came out, so that nothing is optimised away.
size_t RunFloor(const std::string& package);

}  // namespace kestrelon::benchmarks
