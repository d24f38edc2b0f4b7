// The text of a Word document: stories of characters with positions, as Word counts them, over the
// XML of the parts. Everything that an edit does not touch keeps its bytes.
//
// Positions: one per character, tab, break, paragraph mark, end-of-cell mark, end-of-row mark, field
// character, anchored or in-line picture, note reference. Text(): "\r" for a paragraph mark, "\r\a"
// for an end-of-cell or end-of-row mark, "\v" for a line break, "\f" for a page or section break,
// "\t" for a tab. Text in tracked deletions has no positions and is never found.
//
// Errors are AutomationErrors with Word's own numbers: 5904 "Cannot edit Range.", 5854 "String
// parameter too long.", 4608 "Value out of range.", 5941 "The requested member of the collection does
// not exist."
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "automation/AutomationError.h"
#include "automation/Text.h"

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

enum class DocumentKind { kDocx, kDocm, kDotx, kDotm };

class Document;
class Story;
class Table;

// What Find.Text says: plain text with Word's "^" codes. Error 5854 over 255 units.
class FindPattern;

// A span that moves with the edits around it, as Word's Range objects do.
class TrackedSpan;

// The shapes below are the plan of the interface; see the class definitions that follow.
}  // namespace kestrelon::desktop::word
