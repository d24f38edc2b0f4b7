// The text of one paragraph as it is put together: white space collapses as in a browser.
#pragma once

#include <vector>

#include "desktop/word/html/ElementStyle.h"

namespace kestrelon::desktop::word::html {

class InlineText {
 public:
  void Add(StringView text, const Inherited& style);
  void AddBreak(const Inherited& style);
  bool empty() const { return runs_.empty(); }
  // The runs so far, without white space at the end and without a last line break, which only ends
  // the line that the paragraph ends anyway. Begins anew.
  std::vector<Run> Take();

 private:
  void Append(char16_t unit, const Inherited& style);
  void DropBlank();

  std::vector<Run> runs_;
  bool at_line_start_ = true;
  bool ends_with_blank_ = false;  // one that collapses
};

}  // namespace kestrelon::desktop::word::html
