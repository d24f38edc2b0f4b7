// Inserts whole paragraphs and tables into a story.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "desktop/word/document/InsertionPlace.h"
#include "desktop/word/document/StoryText.h"

namespace kestrelon::desktop::word {

class BlockInsertion {
 public:
  // Error 5904 where no block can stand: at an end-of-row mark, and in the middle of a field, or of
  // a content control that is part of a paragraph.
  BlockInsertion(StoryText& story, int32_t position);

  // The blocks for this place, not inserted yet. Error 5904 when the part would nest too deep or
  // become too large to be read again.
  std::vector<NodeId> Prepare(const BlockSource& source);
  // The paragraph is split; one that the blocks begin with joins its first half. What is left of
  // the paragraph follows the blocks. Returns the span of what was inserted.
  Span Execute(std::vector<NodeId> blocks);

 private:
  InsertionPlace Describe();
  bool CanSplit() const;
  size_t PieceBehind() const;
  int32_t WidthOfCell(const Cell& cell);
  int32_t WidthOfPage();
  int32_t TwipsOf(NodeId parent, std::string_view element, std::string_view attribute) const;

  std::unique_ptr<Paragraph> SplitHead();
  NodeId FirstNodeBehind();
  NodeId HeadLike();
  void JoinFirst(Paragraph& head);
  void SeparateTables();
  void MoveAnchors(Paragraph& front);
  void Splice(std::vector<std::unique_ptr<Paragraph>> paragraphs,
              std::vector<std::unique_ptr<Table>> tables);

  StoryText& story_;
  XmlTree& tree_;
  size_t index_;       // of the paragraph
  size_t offset_;      // in it
  Paragraph& behind_;  // keeps its mark, and the text from the place on
  std::vector<NodeId> blocks_;
};

}  // namespace kestrelon::desktop::word
