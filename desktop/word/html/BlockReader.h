// Walks over the elements of a page and takes down the blocks that they make.
#pragma once

#include <vector>

#include "desktop/word/html/ElementStyle.h"
#include "desktop/word/html/InlineText.h"

namespace kestrelon::desktop::word::html {

// What the readers of one page share.
struct Page {
  StyleSheet sheet;
  // A few letters can make any number of cells, where others hang down from above.
  size_t cells_left = 1'000'000;
};

class BlockReader {
 public:
  explicit BlockReader(Page& page) : page_(page) {}

  // What stands in the element, whose own style `style` is.
  void ReadContent(const xmlNode& element, const ElementStyle& style);
  // A node that stands where no text belongs.
  void ReadStray(const xmlNode& node, const Inherited& around);
  // The blocks so far. Margins that the page did not ask for are left out at the top and the bottom
  // of a cell.
  std::vector<Block> Take(bool is_cell);

 private:
  // The list around: what the next item is called.
  struct List {
    bool is_ordered = false;
    int32_t next = 1;
  };

  void ReadNode(const xmlNode& node, const Inherited& inherited);
  void ReadChildren(const xmlNode& parent, const Inherited& inherited);
  void ReadElement(const xmlNode& element, const Inherited& around);
  void ReadBlock(const xmlNode& element, const ElementStyle& style);
  void ReadTable(const xmlNode& element, const ElementStyle& style);
  void AddRule(const Inherited& inherited);
  void StartItem(const xmlNode& element, const Inherited& inherited);
  void EndItem(const Inherited& inherited);
  void EndParagraph();
  void AddParagraph(Paragraph paragraph);

  Page& page_;
  std::vector<Block> blocks_;
  InlineText text_;
  Inherited block_;      // the style of the block around
  int32_t heading_ = 0;  // its level
  List list_;
  String marker_;       // of an item that has no paragraph yet
  int32_t margin_ = 0;  // to be left above the next paragraph
  bool margin_is_own_ = false;
};

}  // namespace kestrelon::desktop::word::html
