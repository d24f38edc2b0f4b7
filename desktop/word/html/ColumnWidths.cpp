#include "desktop/word/html/ColumnWidths.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace kestrelon::desktop::word::html {
namespace {

constexpr int32_t kNarrowest = 60;
constexpr int32_t kWidest = 31680;  // 22 inches, the widest page there is
constexpr int32_t kTiny = 100;      // less than a letter
constexpr int32_t kUsualHalfPoints = 22;
// Of the height of the letters: what a letter is wide on average, with some room.
constexpr double kLetterWidth = 0.58;

// What the text of a cell takes: its longest word, and its longest line.
struct Extent {
  double least = 0;
  double most = 0;
};

Extent ExtentOf(const Paragraph& paragraph) {
  Extent extent;
  double word = 0;
  double line = 0;
  for (const Run& run : paragraph.runs) {
    const int32_t size = run.style.half_points == 0 ? kUsualHalfPoints : run.style.half_points;
    const double letter = size * 10 * kLetterWidth * (run.style.bold ? 1.08 : 1);
    for (const char16_t unit : run.text) {
      line = unit == u'\v' ? 0 : line + letter;
      word = unit == u' ' || unit == u'\v' ? 0 : word + letter;
      // The fewer letters, the likelier wide ones among them are not made up for.
      extent.most = std::max(extent.most, line + letter / 2);
      if (word > 0) extent.least = std::max(extent.least, word + letter / 2);
    }
  }
  return extent;
}

Extent ExtentOf(const Cell& cell, int32_t padding) {
  Extent extent;
  for (const Block& block : cell.blocks) {
    if (const auto* paragraph = std::get_if<Paragraph>(&block)) {
      const Extent one = ExtentOf(*paragraph);
      extent.least = std::max(extent.least, cell.no_wrap ? one.most : one.least);
      extent.most = std::max(extent.most, one.most);
    } else {
      const auto& table = std::get<Table>(block);
      const double width = table.width.IsTwips()
                               ? table.width.value
                               : 1440.0 * static_cast<double>(table.columns.size());
      extent.least = std::max(extent.least, table.width.IsTwips() ? width : 0);
      extent.most = std::max(extent.most, width);
    }
  }
  const double sides =
      cell.padding[kLeft].value_or(padding) + cell.padding[kRight].value_or(padding);
  return {extent.least + sides, extent.most + sides};
}

class Layout {
 public:
  Layout(const Table& table, int32_t available)
      : table_(table),
        available_(available),
        asked_(table.columns),
        extents_(table.columns.size()),
        widths_(table.columns.size()) {}

  ColumnWidths Compute() {
    Measure();
    ShareSpans();
    ForgetTinyWidths();
    LimitShares();
    WidenForSpans();
    const double table = TableWidth();
    ColumnWidths result;
    const auto as_measure = [](double width, int32_t least) {
      return static_cast<int32_t>(std::lround(std::clamp<double>(width, least, kWidest)));
    };
    result.table = HasOwnWidth() ? as_measure(table, 0) : 0;
    Distribute(table);
    for (size_t i = 0; i < widths_.size(); ++i) {
      result.columns.push_back(as_measure(widths_[i], kNarrowest));
      result.is_asked.push_back(asked_[i].IsSet());
    }
    return result;
  }

 private:
  void Measure() {
    for (const Row& row : table_.rows) {
      for (const Cell& cell : row.cells) {
        if (cell.columns != 1) continue;
        Length& asked = asked_[cell.column];
        if (!cell.goes_on && cell.width.IsSet() &&
            (!asked.IsSet() || (asked.unit == cell.width.unit && cell.width.value > asked.value))) {
          asked = cell.width;
        }
        const Extent extent = ExtentOf(cell, table_.padding);
        extents_[cell.column].least = std::max(extents_[cell.column].least, extent.least);
        extents_[cell.column].most = std::max(extents_[cell.column].most, extent.most);
      }
    }
  }

  // A cell over several columns says how wide those are together that nothing else says.
  void ShareSpans() {
    for (const Row& row : table_.rows) {
      for (const Cell& cell : row.cells) {
        if (cell.columns == 1 || !cell.width.IsSet()) continue;
        double left = cell.width.value;
        double unknown = 0;
        for (size_t i = cell.column; i < cell.column + cell.columns; ++i) {
          if (!asked_[i].IsSet()) ++unknown;
          if (asked_[i].unit == cell.width.unit) left -= asked_[i].value;
        }
        for (size_t i = cell.column; left > 0 && i < cell.column + cell.columns; ++i) {
          if (!asked_[i].IsSet()) asked_[i] = {cell.width.unit, left / unknown};
        }
      }
    }
  }

  // All columns together have no more than the table: what the first ones leave is for the next.
  void LimitShares() {
    double left = 100;
    for (Length& asked : asked_) {
      if (!asked.IsPercent()) continue;
      asked.value = std::min(asked.value, left);
      left -= asked.value;
      if (asked.value < 1) asked = {};
    }
  }

  // "0" and "1%" say that the content decides: browsers break no word for them.
  void ForgetTinyWidths() {
    if (table_.is_fixed) return;
    const double whole = table_.width.IsTwips() ? table_.width.value : available_;
    for (size_t i = 0; i < asked_.size(); ++i) {
      Length& asked = asked_[i];
      const double width = asked.IsPercent() ? whole * asked.value / 100 : asked.value;
      if (width < kTiny && width < extents_[i].least) asked = {};
    }
  }

  // Columns without a width of their own make room for what stands over several of them.
  void WidenForSpans() {
    for (const Row& row : table_.rows) {
      for (const Cell& cell : row.cells) {
        if (cell.columns == 1 || cell.goes_on) continue;
        Extent lacks = ExtentOf(cell, table_.padding);
        double unknown = 0;
        for (size_t i = cell.column; i < cell.column + cell.columns; ++i) {
          lacks.least -= extents_[i].least;
          lacks.most -= extents_[i].most;
          if (!asked_[i].IsSet()) ++unknown;
        }
        for (size_t i = cell.column; i < cell.column + cell.columns; ++i) {
          if (asked_[i].IsSet()) continue;
          extents_[i].least += std::max(lacks.least, 0.0) / unknown;
          extents_[i].most += std::max(lacks.most, 0.0) / unknown;
        }
      }
    }
  }

  bool HasOwnWidth() const {
    return table_.width.IsSet() ||
           std::all_of(asked_.begin(), asked_.end(), [](Length one) { return one.IsSet(); });
  }

  double TableWidth() const {
    if (table_.width.IsPercent()) return available_ * std::min(table_.width.value, 100.0) / 100;
    if (table_.width.IsTwips()) return table_.width.value;
    double sum = 0;
    for (size_t i = 0; i < asked_.size(); ++i) {
      if (asked_[i].IsPercent()) return available_;
      sum += asked_[i].IsTwips() ? asked_[i].value : extents_[i].most;
    }
    return HasOwnWidth() ? sum : std::min<double>(sum, available_);
  }

  void Distribute(double table) {
    double left = table;
    Extent unknown;
    size_t unknown_count = 0;
    for (size_t i = 0; i < widths_.size(); ++i) {
      if (!asked_[i].IsSet()) {
        unknown.least += extents_[i].least;
        unknown.most += extents_[i].most;
        ++unknown_count;
        continue;
      }
      widths_[i] = asked_[i].IsPercent() ? table * asked_[i].value / 100 : asked_[i].value;
      left -= widths_[i];
    }
    if (unknown_count == 0) return ScaleTo(table);
    // Something is left for them even where the others take all of the page.
    const double room = std::max({left, available_ - (table - left), available_ / 4.0});
    const double widest = WidestWithin(room);
    for (size_t i = 0; i < widths_.size(); ++i) {
      if (asked_[i].IsSet()) continue;
      const Extent& own = extents_[i];
      if (left <= unknown.least) {
        widths_[i] = std::min(own.least, widest);
      } else if (left >= unknown.most) {
        widths_[i] = unknown.most > 0 ? own.most * left / unknown.most
                                      : left / static_cast<double>(unknown_count);
      } else {
        widths_[i] = own.least + (own.most - own.least) * (left - unknown.least) /
                                     (unknown.most - unknown.least);
      }
    }
  }

  // What no column may exceed whose width nothing says, where the longest words of all of them are
  // wider than `room`. Those words break; a browser would have them run out of the page.
  double WidestWithin(double room) const {
    std::vector<double> words;
    for (size_t i = 0; i < asked_.size(); ++i) {
      if (!asked_[i].IsSet()) words.push_back(extents_[i].least);
    }
    std::sort(words.begin(), words.end());
    for (size_t i = 0; i < words.size(); ++i) {
      const double share = room / static_cast<double>(words.size() - i);
      if (words[i] > share) return share;
      room -= words[i];
    }
    return kWidest;
  }

  void ScaleTo(double table) {
    const double sum = std::accumulate(widths_.begin(), widths_.end(), 0.0);
    if (sum <= 0) return;
    for (double& width : widths_) width *= table / sum;
  }

  const Table& table_;
  const int32_t available_;
  std::vector<Length> asked_;
  std::vector<Extent> extents_;
  std::vector<double> widths_;
};

}  // namespace

int32_t ColumnWidths::Of(const Cell& cell) const {
  const auto first = columns.begin() + static_cast<ptrdiff_t>(cell.column);
  return std::accumulate(first, first + static_cast<ptrdiff_t>(cell.columns), 0);
}

bool ColumnWidths::IsAsked(const Cell& cell) const {
  const auto first = is_asked.begin() + static_cast<ptrdiff_t>(cell.column);
  return std::all_of(first, first + static_cast<ptrdiff_t>(cell.columns), [](bool b) { return b; });
}

ColumnWidths WidthsOf(const Table& table, int32_t available) {
  return Layout(table, available).Compute();
}

}  // namespace kestrelon::desktop::word::html
