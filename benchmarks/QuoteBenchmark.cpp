// Quotes of many lines, each against what no program can do without.

#include "benchmarks/QuoteBenchmark.h"

int main() {
  kestrelon::benchmarks::MeasureQuoteTemplates();
  kestrelon::benchmarks::MeasureWordQuotes();
  return 0;
}
