// Deletes a span that may reach over paragraph marks and whole tables.
#pragma once

#include <vector>

#include "desktop/word/document/StoryText.h"

namespace kestrelon::desktop::word {

class SpanDeletion {
 public:
  // Finds out what is to be done. Error 5904 when the span holds a part of a table's structure
  // without the whole table, or parts of two notes.
  SpanDeletion(StoryText& story, Span span);
  bool starts_with_table() const { return !tables_.empty() && !IsDirect(story_.At(first_.index)); }
  // Without a last mark that stays.
  Span span() const { return span_; }
  // A paragraph beside the tables of the span, if there are any, begins where the span was.
  bool LeavesParagraph() const;
  void Execute();

 private:
  bool LeaveLastMark();
  void FindCommonCell();
  void CheckTables();
  Table* TableInCommonCell(const Paragraph& paragraph) const;
  // The paragraph stands in the common cell itself, not in a table there.
  bool IsDirect(const Paragraph& paragraph) const;
  bool FollowsTable() const;
  Paragraph* FindSurvivor();
  void MergeInto(Paragraph& survivor, size_t cut);
  void MoveText(Paragraph& from, Paragraph& to);
  void MoveChildren(const Paragraph& from, Paragraph& to);
  void MoveAnchors(Paragraph& survivor, size_t kept);
  void RemoveItems(size_t begin, size_t end);
  void RemoveParagraphNode(NodeId node);
  void RemoveTable(Table& table);

  StoryText& story_;
  XmlTree& tree_;
  Span span_;
  StoryText::Place first_{};  // of the first position of the span
  StoryText::Place last_{};   // of its last position
  Cell* common_ = nullptr;    // the innermost cell that holds all of the span
  std::vector<Table*> tables_;
};

}  // namespace kestrelon::desktop::word
