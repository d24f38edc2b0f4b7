// Random choices that are the same in each run.
#pragma once

#include <random>
#include <vector>

#include "automation/Text.h"

namespace kestrelon::testing {

class Dice {
 public:
  size_t Roll(size_t sides) { return std::uniform_int_distribution<size_t>(0, sides - 1)(engine_); }
  String OneOf(const std::vector<String>& choices) { return choices[Roll(choices.size())]; }

 private:
  std::mt19937 engine_{20261121};
};

}  // namespace kestrelon::testing
