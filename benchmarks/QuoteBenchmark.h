// The parts of the quote benchmark. Each prints its times, then its ratios.
#pragma once

namespace kestrelon::benchmarks {

// HTML templates of 10,000 and 20,000 lines against reading the lines' values.
void MeasureQuoteTemplates();

}  // namespace kestrelon::benchmarks
