#pragma once

#include <cstdlib>

// What does not hold is a finding.
inline void Require(bool holds) {
  if (!holds) std::abort();
}
