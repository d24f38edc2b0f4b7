// A paragraph as text: its characters, and where in the XML each of them stands.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "automation/Text.h"
#include "desktop/word/xml/XmlTree.h"

namespace kestrelon::desktop::word {

class Cell;
class Table;

enum class PieceKind : uint8_t {
  kText,       // w:t
  kCharacter,  // a tab, break or hyphen: one unit
  kObject,     // a picture, note reference, symbol or formula: one unit
  kFieldCode,  // the text of a field code
  kFieldBegin,
  kFieldSeparator,
  kFieldEnd,
};

// Fields take positions, but a search looks through them.
inline bool IsField(PieceKind kind) { return kind >= PieceKind::kFieldCode; }

struct Piece {
  uint32_t begin;  // in the paragraph's text
  uint32_t length;
  NodeId node;
  PieceKind kind;
  bool changed = false;  // the text is newer than the node; kText only

  uint32_t end() const { return begin + length; }
};

enum class Mark : uint8_t { kParagraph, kSection, kCell, kRow };

struct Paragraph {
  // kNoNode where the file has none: an end-of-row mark, or the paragraph that must stand at the
  // end of a cell or story and is missing there.
  NodeId node = kNoNode;
  NodeId container = kNoNode;  // body, header, note, text box or cell that it stands in
  Mark mark = Mark::kParagraph;
  bool has_fields = false;
  bool is_last = false;    // of its container: the mark cannot go
  uint32_t flow = 0;       // which of the containers that the story is made of it belongs to
  Cell* cell = nullptr;    // the innermost; of an end-of-row mark, the one that its table stands in
  Table* table = nullptr;  // of an end-of-row mark
  String text;
  std::vector<Piece> pieces;

  // Kept by the story's text; see StoryText.
  int32_t start = 0;
  uint32_t index = 0;
  std::optional<uint64_t> units;  // kept by searches, see FindPattern; none once the text changes

  int32_t length() const { return static_cast<int32_t>(text.size()) + 1; }
};

// The units that stand for what is no character.
constexpr char16_t kObjectUnit = 0x01;
constexpr char16_t kNoteUnit = 0x02;
constexpr char16_t kTabUnit = u'\t';
constexpr char16_t kLineBreakUnit = u'\v';
constexpr char16_t kPageBreakUnit = u'\f';
constexpr char16_t kColumnBreakUnit = 0x0E;
constexpr char16_t kFieldBeginUnit = 0x13;
constexpr char16_t kFieldSeparatorUnit = 0x14;
constexpr char16_t kFieldEndUnit = 0x15;
constexpr char16_t kNoBreakHyphenUnit = 0x1E;
constexpr char16_t kSoftHyphenUnit = 0x1F;

}  // namespace kestrelon::desktop::word
