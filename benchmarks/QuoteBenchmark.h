// The parts of the quote benchmark. Each prints its times, then its ratios.
#pragma once

namespace kestrelon::benchmarks {

// HTML templates of 10,000 and 20,000 lines against reading the lines' values.
void MeasureQuoteTemplates();
// Quotes of 2,000 and 4,000 lines in a table of the Word template against the floor.
void MeasureWordQuotes();

}  // namespace kestrelon::benchmarks
