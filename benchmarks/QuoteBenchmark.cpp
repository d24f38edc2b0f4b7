// Quotes of many lines, each against a plain loop over the same lines.

#include "benchmarks/QuoteBenchmark.h"

int main() {
  kestrelon::benchmarks::MeasureQuoteTemplates();
  return 0;
}
