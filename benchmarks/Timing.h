// Times of actions, and the ratios that the benchmarks print.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <vector>

namespace kestrelon::benchmarks {

inline double Seconds(const std::function<void()>& action) {
  const auto start = std::chrono::steady_clock::now();
  action();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

inline double Median(std::vector<double> values) {
  std::nth_element(values.begin(), values.begin() + static_cast<long>(values.size() / 2),
                   values.end());
  return values[values.size() / 2];
}

inline void PrintRatio(const char* what, double ratio, double wanted) {
  std::printf("%-64s %7.2f  (wanted: at most %g)\n", what, ratio, wanted);
}

}  // namespace kestrelon::benchmarks
