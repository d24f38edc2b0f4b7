// One flow of text in a document: the main text, a header, a text box, all footnotes.
//
// Positions: one per UTF-16 unit, tab, break, paragraph mark, end-of-cell mark, end-of-row mark,
// field character and code, picture, note reference. Bookmarks, proofing marks, comment anchors,
// content controls and hyperlinks have none, nor has the text of tracked deletions.
//
// Errors: 4608 "Value out of range." for a span that is not within the story.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "automation/Text.h"
#include "desktop/word/document/FindPattern.h"
#include "desktop/word/document/InsertionPlace.h"

namespace kestrelon::desktop::word {

// Positions from `start` up to, not including, `end`.
struct Span {
  int32_t start = 0;
  int32_t end = 0;
  friend bool operator==(Span, Span) = default;
};

enum class StoryType : int32_t {
  kMain = 1,
  kFootnotes = 2,
  kEndnotes = 3,
  kComments = 4,
  kTextFrame = 5,
  kEvenPagesHeader = 6,
  kPrimaryHeader = 7,
  kEvenPagesFooter = 8,
  kPrimaryFooter = 9,
  kFirstPageHeader = 10,
  kFirstPageFooter = 11,
};

class Document;
class Table;
class TrackedSpan;
class StoryText;
struct TrackedEnds;

class Story {
 public:
  Story(Document& document, StoryType type, std::unique_ptr<StoryText> text);
  Story(const Story&) = delete;
  Story& operator=(const Story&) = delete;
  ~Story();

  StoryType type() const { return type_; }
  Document& document() const { return document_; }

  // All positions; the last one is the final paragraph mark. At least 1.
  int32_t Length() const;
  // "\r" for a paragraph mark, "\r\a" for an end-of-cell or end-of-row mark, "\v" for a line break,
  // "\f" for a page or section break, "\t" for a tab.
  String Text(Span span) const;
  // Information(12): the span lies within a table.
  bool IsInTable(Span span) const;

  // The first match (the last one, backward) that lies wholly within [from, to). What an earlier
  // search for the same pattern has found to hold no match, and no edit has touched, is not
  // searched again.
  std::optional<Span> Find(const FindPattern& pattern, int32_t from, int32_t to,
                           bool forward = true);
  // Puts plain text in the place of the span (empty: an insertion), with the formatting of the
  // span's first run. CR LF, CR, LF and VT become line breaks, tabs become tabs, characters that
  // XML forbids are dropped. Returns the span of the new text. Error 5904 as for Delete.
  Span Replace(Span span, StringView text);
  // Replaces every match and does not look into what it has put in. Returns how many. Error 5854
  // for a replacement over 255 units. Matches that may not be edited are left alone.
  int32_t ReplaceAll(const FindPattern& pattern, StringView replacement);
  // Paragraphs whose mark goes are merged; the merged one looks as the last of them did, whose mark
  // survives. Fields go only as a whole. A span of exactly one cell empties it. Error 5904 when the
  // span holds a part of a table's structure without the whole table. The last mark of the story,
  // and a mark that must stay before or between tables, is left alone.
  void Delete(Span span);
  // Puts paragraphs and tables in the place of the span (empty: an insertion), which splits the
  // paragraph there unless they go before its first character. A paragraph that they begin with
  // joins the first half; what is left of the paragraph, an empty one at least, follows them.
  // Returns the span of what was inserted. Error 5904 as for Delete, at an end-of-row mark, and in
  // the middle of a field or of a content control within a paragraph; 5792 when the part could not
  // be read any more. Nothing has changed then.
  Span InsertBlocks(Span span, const BlockSource& blocks);

  // The start of the next paragraph, the length of the story in the last one; upward, the start of
  // the paragraph, or of the one before it. End-of-row marks are passed over.
  int32_t MoveByParagraph(int32_t position, bool down) const;

  // The tables of the story, nested ones not counted. 1-based; error 5941 for any other index. A
  // table stays valid until it is deleted.
  int32_t TableCount() const;
  Table* TableAt(int32_t index) const;
  // The text boxes anchored in this story, each followed by those anchored in itself. 1-based;
  // error 5941 for any other index. The modern and the fallback copy of a text box are one story;
  // edits reach both.
  int32_t TextBoxCount() const;
  Story* TextBoxAt(int32_t index) const;

 private:
  friend class TrackedSpan;
  friend class Document;
  // Without those whose anchor has been deleted.
  std::vector<Story*> TextBoxes() const;

  Document& document_;
  StoryType type_;
  std::unique_ptr<StoryText> text_;
  std::vector<std::unique_ptr<Story>> text_boxes_;
};

// A span that moves with the edits around it, as Word's Range objects do. Must not outlive its
// story.
class TrackedSpan {
 public:
  TrackedSpan(Story& story, Span span);
  TrackedSpan(TrackedSpan&& other) noexcept;
  TrackedSpan& operator=(TrackedSpan&& other) noexcept;
  ~TrackedSpan();

  Span span() const;
  void Set(Span span);
  Story& story() const { return *story_; }

 private:
  Story* story_;
  std::unique_ptr<TrackedEnds> ends_;
};

}  // namespace kestrelon::desktop::word
