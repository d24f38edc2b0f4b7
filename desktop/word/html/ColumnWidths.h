// How wide the columns of a table are, as a browser would make them.
#pragma once

#include <cstdint>
#include <vector>

#include "desktop/word/html/HtmlBlocks.h"

namespace kestrelon::desktop::word::html {

struct ColumnWidths {
  std::vector<int32_t> columns;
  // The width that the page asked for, or that follows from those of all columns; 0 where the
  // content decides.
  int32_t table = 0;
  // Which columns have a width that the page asked for.
  std::vector<bool> is_asked;

  int32_t Of(const Cell& cell) const;
  bool IsAsked(const Cell& cell) const;
};

// `available` is the width of the text around.
ColumnWidths WidthsOf(const Table& table, int32_t available);

}  // namespace kestrelon::desktop::word::html
