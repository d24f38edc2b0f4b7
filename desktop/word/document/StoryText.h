// The text of a story: its paragraphs in order, with their positions, over the XML of a part.
//
// Positions are sums over the paragraphs before, kept up to the last one that was asked for; an
// edit forgets those behind it. A walk from the front to the end with an edit at every step costs
// no more than one without. A search remembers likewise up to where its pattern does not occur.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/word/document/DocumentPart.h"
#include "desktop/word/document/FindPattern.h"
#include "desktop/word/document/InsertionPlace.h"
#include "desktop/word/document/Paragraph.h"
#include "desktop/word/document/Story.h"
#include "desktop/word/document/Table.h"

namespace kestrelon::desktop::word {

struct TextBoxNodes {
  NodeId content;
  NodeId fallback;  // kNoNode when there is one copy only
};

// What a walk over the XML takes down.
struct StoryContent {
  std::vector<std::unique_ptr<Paragraph>> paragraphs;
  std::vector<std::unique_ptr<Table>> tables;  // nested ones behind the one they stand in
  std::vector<TextBoxNodes> text_boxes;
  std::vector<NodeId> sections;  // properties of all sections but the last
};

struct TrackedEnd {
  Paragraph* paragraph = nullptr;
  size_t offset = 0;  // up to one past the mark
};

// Both ends of a tracked span; they stay where they are when other paragraphs change.
struct TrackedEnds {
  TrackedEnd start;
  TrackedEnd end;
};

class StoryText {
 public:
  // The text of `containers` one after the other.
  StoryText(DocumentPart& part, const std::vector<NodeId>& containers);
  ~StoryText();

  DocumentPart& part() { return part_; }
  XmlTree& tree() { return part_.tree; }
  Story& story() { return *story_; }
  void set_story(Story& story) { story_ = &story; }
  // A copy of this text elsewhere in the part, which every edit has to reach.
  StoryText* mirror() const { return mirror_.get(); }
  void set_mirror(std::unique_ptr<StoryText> mirror) { mirror_ = std::move(mirror); }

  // False once what the text stands in has been deleted.
  bool IsPresent() const { return part_.tree.IsAttached(content_.paragraphs.front()->container); }

  int32_t length() const { return length_; }
  std::vector<Table*> TopTables() const;
  const std::vector<TextBoxNodes>& text_boxes() const { return content_.text_boxes; }
  const std::vector<NodeId>& sections() const { return content_.sections; }

  struct Place {
    size_t index;   // of the paragraph
    size_t offset;  // in its text; its size is the place of the mark
  };
  // 0 <= position <= length(); the length itself lies past the mark of the last paragraph.
  Place Locate(int32_t position);
  Paragraph& At(size_t index) { return *content_.paragraphs[index]; }
  size_t Count() const { return content_.paragraphs.size(); }
  size_t IndexOf(const Paragraph& paragraph);
  int32_t StartOf(const Paragraph& paragraph);

  String Text(Span span);
  // The innermost table around a paragraph or end-of-row mark; nullptr when there is none.
  static Table* TableAround(const Paragraph& paragraph);
  bool IsInTable(Span span);
  std::optional<Span> Find(const FindPattern& pattern, Span within, bool forward);

  Span Replace(Span span, StringView text);
  int32_t ReplaceAll(const FindPattern& pattern, StringView replacement);
  void Delete(Span span);
  Span InsertBlocks(Span span, const BlockSource& blocks);
  int32_t MoveByParagraph(int32_t position, bool down);
  // Replaces all text of a paragraph, its mark left alone, without asking for its position.
  void SetText(Paragraph& paragraph, StringView text);
  void AppendRow(Table& table, NodeId row, Paragraph& after);

  // Writes the text of changed pieces into their nodes.
  void WriteText();

  void Track(TrackedEnds& anchors) { tracked_.push_back(&anchors); }
  void Untrack(TrackedEnds& anchors);
  TrackedEnd AnchorAt(int32_t position);
  int32_t PositionOf(const TrackedEnd& anchor);

  // Every change of a paragraph's text is reported here.
  void NoteInserted(Paragraph& paragraph, size_t at, size_t count);
  void NoteRemoved(Paragraph& paragraph, size_t from, size_t to);

 private:
  friend class BlockInsertion;
  friend class SpanDeletion;
  using Match = FindPattern::Match;

  // What has been searched for, and up to where it does not occur.
  struct Searched {
    std::optional<FindPattern> pattern;
    size_t index = 0;
    size_t offset = 0;
  };

  void ExtendTo(size_t count);
  void SetSearched(Place place) {
    searched_.index = place.index;
    searched_.offset = place.offset;
  }
  void ForgetFrom(const Paragraph& paragraph, size_t offset);
  int32_t EndOf(size_t index) { return At(index).start + At(index).length(); }
  void CheckSpan(Span span) const;

  static Match FindInParagraph(const FindPattern& pattern, const Paragraph& paragraph, size_t from);
  std::optional<Span> FindForward(const FindPattern& pattern, Span within);
  std::optional<Span> FindBackward(const FindPattern& pattern, Span within);
  std::optional<Span> FindAcross(const FindPattern& pattern, Span within, bool forward);
  int32_t ReplaceAllAcross(const FindPattern& pattern, StringView replacement);
  int32_t ReplaceAllInParagraph(const FindPattern& pattern, StringView replacement, size_t index,
                                size_t offset);

  Span ReplaceHere(Span span, const String& clean);
  Span ReplaceAcross(Span span, const String& clean);
  void AppendMirrorRow(const Table& table);
  void EditMirror(Span span, const String& before, StringView text);

  DocumentPart& part_;
  Story* story_ = nullptr;
  StoryContent content_;
  std::unique_ptr<StoryText> mirror_;
  std::vector<std::unique_ptr<Table>> deleted_tables_;  // script may still hold them
  int32_t length_ = 0;
  size_t known_ = 0;  // the paragraphs before it know their start and index
  Searched searched_;
  std::vector<TrackedEnds*> tracked_;
};

}  // namespace kestrelon::desktop::word
