// Where blocks are to be inserted, as far as their markup depends on it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace kestrelon::desktop::word {

struct InsertionPlace {
  std::string prefix;   // of Word's namespace there, with its colon
  bool strict = false;  // the part is in the strict form of the format
  int32_t width = 0;    // of a line of text there, in twentieths of a point
};

// The markup of whole paragraphs and tables that fits the place. Called once for each copy of the
// text that they go into.
using BlockSource = std::function<std::string(const InsertionPlace&)>;

}  // namespace kestrelon::desktop::word
