// Edits within one paragraph: text goes into the runs that are there, and only those that an edit
// touches change.
#pragma once

#include <vector>

#include "desktop/word/document/Paragraph.h"
#include "desktop/word/document/StoryText.h"

namespace kestrelon::desktop::word {

// Plain text as it can stand in a document: line ends of every kind as "\v", tabs as they are,
// without what XML forbids.
String CleanText(StringView text);

class ParagraphEditor {
 public:
  ParagraphEditor(StoryText& story, Paragraph& paragraph)
      : story_(story), tree_(story.tree()), paragraph_(paragraph) {}

  // Puts clean text in the place of the units from `from` to `to`. Fields that do not lie within
  // them as a whole stay. Returns where the new text begins.
  size_t Replace(size_t from, size_t to, StringView clean);
  // The node, made where the file has none.
  NodeId EnsureParagraph();
  // No text piece reaches over `at` from then on.
  void SplitAt(size_t at);

 private:
  std::vector<NodeId> WholeFields(size_t from, size_t to) const;
  size_t InsertionPoint(size_t from, size_t to) const;
  size_t TextPieceAt(size_t from, size_t to, size_t at);
  size_t NewTextPiece(size_t index, size_t at, NodeId parent, NodeId next);
  size_t PieceInNewRun(size_t index, size_t at);
  NodeId NewRun();
  void InsertTokens(size_t index, size_t at, StringView clean);
  bool SplitPiece(size_t index, size_t at);
  void InsertUnits(size_t index, size_t at, StringView units);
  size_t InsertCharacter(size_t index, char16_t unit);

  void Remove(size_t from, size_t to, const std::vector<NodeId>& whole_fields);
  void CutPiece(size_t index, size_t from, size_t to);
  void DropPiece(size_t index);

  StoryText& story_;
  XmlTree& tree_;
  Paragraph& paragraph_;
};

}  // namespace kestrelon::desktop::word
