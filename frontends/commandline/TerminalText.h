// Texts that others wrote, as a terminal may show them.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "automation/Text.h"

namespace kestrelon::commandline {

// UTF-8 on one line: line breaks and tabs become blanks; other control characters, and those that
// turn the direction of writing, are dropped.
std::string OneLine(StringView text);

// The same for each line of the text; breaks at the end do not count.
std::vector<std::string> Lines(StringView text);

// Rows of texts with their columns lined up by what they take on a terminal.
class TextTable {
 public:
  // All rows have as many cells, which are printable already.
  void AddRow(std::vector<std::string> cells);
  void Print(std::ostream& out) const;

 private:
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace kestrelon::commandline
