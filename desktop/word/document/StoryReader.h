// Walks over the XML of a story and takes down its paragraphs, tables and text boxes.
//
// Content controls, hyperlinks, tracked insertions, smart tags, custom XML and simple fields are
// looked through; tracked deletions are left out. Of alternative contents the first branch that
// holds anything known is taken.
#pragma once

#include <memory>
#include <vector>

#include "desktop/word/document/Paragraph.h"
#include "desktop/word/document/StoryText.h"
#include "desktop/word/xml/XmlTree.h"

namespace kestrelon::desktop::word {

// The first run of a paragraph, or of what it holds; kNoNode when there is none.
NodeId FirstRun(const XmlTree& tree, NodeId parent);

class StoryReader {
 public:
  StoryReader(const XmlTree& tree, StoryContent& content) : tree_(tree), content_(content) {}
  // Takes down what stands in a body, header, note or text box, with its last paragraph mark.
  void ReadContainer(NodeId container);
  // Paragraphs and tables that were inserted before `place`.
  void ReadInserted(const std::vector<NodeId>& blocks, const Paragraph& place);
  // A row that was appended to a table.
  void ReadRow(Table& table, NodeId row);

 private:
  void ReadBlocks(NodeId parent);
  void ReadBlock(NodeId node);
  void ReadParagraph(NodeId node);
  void ReadTable(NodeId node);
  void ReadRows(Table& table, NodeId parent);
  void ReadCells(Table& table, NodeId parent);
  void ReadCell(Table& table, NodeId node);
  void EndContainer(NodeId container, Mark mark);
  Paragraph& AddParagraph(NodeId node);

  void ReadInline(NodeId parent);
  void ReadRunContent(NodeId parent);
  void ReadRunChild(NodeId node);
  void ReadFieldCharacter(NodeId node);
  void ReadRunAlternative(NodeId node);
  void AddText(NodeId node, PieceKind kind);
  void AddUnit(NodeId node, PieceKind kind, char16_t unit);
  void AddObject(NodeId node, char16_t unit = kObjectUnit);

  NodeId Branch(NodeId alternative) const;
  bool HoldsContent(NodeId node) const;
  void FindTextBoxes(NodeId node);
  void PairTextBoxes(NodeId alternative);
  void CollectTextBoxes(NodeId node, std::vector<NodeId>& boxes) const;

  const XmlTree& tree_;
  StoryContent& content_;
  NodeId container_ = kNoNode;
  uint32_t flow_ = 0;
  Cell* cell_ = nullptr;
  Paragraph* paragraph_ = nullptr;
};

}  // namespace kestrelon::desktop::word
