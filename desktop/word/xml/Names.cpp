#include "desktop/word/xml/Names.h"

#include <array>

namespace kestrelon::desktop::word {
namespace {

struct Entry {
  std::string_view local;
  Namespace ns;
  Name name;
};

constexpr Entry kEntries[] = {
    {"body", Namespace::kWord, Name::kBody},
    {"comment", Namespace::kWord, Name::kComment},
    {"comments", Namespace::kWord, Name::kComments},
    {"document", Namespace::kWord, Name::kDocument},
    {"endnote", Namespace::kWord, Name::kEndnote},
    {"endnotes", Namespace::kWord, Name::kEndnotes},
    {"ftr", Namespace::kWord, Name::kFooter},
    {"footnote", Namespace::kWord, Name::kFootnote},
    {"footnotes", Namespace::kWord, Name::kFootnotes},
    {"hdr", Namespace::kWord, Name::kHeader},
    {"txbxContent", Namespace::kWord, Name::kTextBoxContent},
    {"p", Namespace::kWord, Name::kParagraph},
    {"pPr", Namespace::kWord, Name::kParagraphProperties},
    {"sectPr", Namespace::kWord, Name::kSectionProperties},
    {"headerReference", Namespace::kWord, Name::kHeaderReference},
    {"footerReference", Namespace::kWord, Name::kFooterReference},
    {"tbl", Namespace::kWord, Name::kTable},
    {"tblHeader", Namespace::kWord, Name::kTableHeader},
    {"tr", Namespace::kWord, Name::kRow},
    {"trPr", Namespace::kWord, Name::kRowProperties},
    {"tc", Namespace::kWord, Name::kCell},
    {"tcPr", Namespace::kWord, Name::kCellProperties},
    {"tblPrEx", Namespace::kWord, Name::kTableExceptions},
    {"AlternateContent", Namespace::kCompatibility, Name::kAlternateContent},
    {"Choice", Namespace::kCompatibility, Name::kChoice},
    {"Fallback", Namespace::kCompatibility, Name::kFallback},
    {"bdo", Namespace::kWord, Name::kBidirectional},
    {"sdt", Namespace::kWord, Name::kControl},
    {"sdtContent", Namespace::kWord, Name::kControlContent},
    {"sdtPr", Namespace::kWord, Name::kControlProperties},
    {"customXml", Namespace::kWord, Name::kCustomXml},
    {"dataBinding", Namespace::kWord, Name::kDataBinding},
    {"dataBinding", Namespace::kWord2012, Name::kRichDataBinding},
    {"dir", Namespace::kWord, Name::kDirection},
    {"hyperlink", Namespace::kWord, Name::kHyperlink},
    {"ins", Namespace::kWord, Name::kInserted},
    {"del", Namespace::kWord, Name::kDeleted},
    {"moveFrom", Namespace::kWord, Name::kMovedFrom},
    {"moveFromRangeStart", Namespace::kWord, Name::kMovedFromStart},
    {"moveFromRangeEnd", Namespace::kWord, Name::kMovedFromEnd},
    {"moveTo", Namespace::kWord, Name::kMovedTo},
    {"showingPlcHdr", Namespace::kWord, Name::kPlaceholderShown},
    {"richText", Namespace::kWord, Name::kRichText},
    {"fldSimple", Namespace::kWord, Name::kSimpleField},
    {"smartTag", Namespace::kWord, Name::kSmartTag},
    {"commentRangeStart", Namespace::kWord, Name::kCommentStart},
    {"commentRangeEnd", Namespace::kWord, Name::kCommentEnd},
    {"commentReference", Namespace::kWord, Name::kCommentReference},
    {"r", Namespace::kWord, Name::kRun},
    {"rPr", Namespace::kWord, Name::kRunProperties},
    {"rPrChange", Namespace::kWord, Name::kRunPropertiesChange},
    {"t", Namespace::kWord, Name::kText},
    {"br", Namespace::kWord, Name::kBreak},
    {"cr", Namespace::kWord, Name::kCarriageReturn},
    {"drawing", Namespace::kWord, Name::kDrawing},
    {"endnoteRef", Namespace::kWord, Name::kEndnoteMark},
    {"endnoteReference", Namespace::kWord, Name::kEndnoteReference},
    {"fldChar", Namespace::kWord, Name::kFieldCharacter},
    {"instrText", Namespace::kWord, Name::kFieldCode},
    {"footnoteRef", Namespace::kWord, Name::kFootnoteMark},
    {"footnoteReference", Namespace::kWord, Name::kFootnoteReference},
    {"oMath", Namespace::kMath, Name::kMath},
    {"oMathPara", Namespace::kMath, Name::kMathParagraph},
    {"noBreakHyphen", Namespace::kWord, Name::kNoBreakHyphen},
    {"object", Namespace::kWord, Name::kObject},
    {"pict", Namespace::kWord, Name::kPicture},
    {"ptab", Namespace::kWord, Name::kPositionedTab},
    {"ruby", Namespace::kWord, Name::kRuby},
    {"softHyphen", Namespace::kWord, Name::kSoftHyphen},
    {"sym", Namespace::kWord, Name::kSymbol},
    {"tab", Namespace::kWord, Name::kTab},
};

// Every element of a file is looked up, so the lookup must cost next to nothing: open addressing
// over a hash of the length and three letters.
constexpr size_t kSlots = 256;

constexpr size_t SlotOf(std::string_view local) {
  const auto at = [&](size_t i) { return static_cast<unsigned char>(local[i]); };
  return (local.size() * 67 + at(0) * 5 + at(local.size() / 2) * 19 + at(local.size() - 1)) %
         kSlots;
}

constexpr std::array<uint8_t, kSlots> MakeSlots() {
  std::array<uint8_t, kSlots> slots{};
  for (size_t i = 0; i < std::size(kEntries); ++i) {
    size_t slot = SlotOf(kEntries[i].local);
    while (slots[slot] != 0) slot = (slot + 1) % kSlots;
    slots[slot] = static_cast<uint8_t>(i + 1);
  }
  return slots;
}

constexpr std::array<uint8_t, kSlots> kSlotTable = MakeSlots();

struct Uri {
  std::string_view uri;
  Namespace ns;
};

constexpr Uri kUris[] = {
    {"http://schemas.openxmlformats.org/wordprocessingml/2006/main", Namespace::kWord},
    {"http://purl.oclc.org/ooxml/wordprocessingml/main", Namespace::kWord},
    {"http://schemas.openxmlformats.org/markup-compatibility/2006", Namespace::kCompatibility},
    {"http://schemas.openxmlformats.org/officeDocument/2006/math", Namespace::kMath},
    {"http://purl.oclc.org/ooxml/officeDocument/math", Namespace::kMath},
    {"http://schemas.microsoft.com/office/word/2010/wordml", Namespace::kWord2010},
    {"http://schemas.microsoft.com/office/word/2012/wordml", Namespace::kWord2012},
};

}  // namespace

Namespace NamespaceOfUri(std::string_view uri) {
  for (const Uri& known : kUris) {
    if (known.uri == uri) return known.ns;
  }
  return Namespace::kOther;
}

Name FindName(Namespace ns, std::string_view local) {
  if (ns == Namespace::kOther || local.empty()) return Name::kOther;
  for (size_t slot = SlotOf(local); kSlotTable[slot] != 0; slot = (slot + 1) % kSlots) {
    const Entry& entry = kEntries[kSlotTable[slot] - 1];
    if (entry.ns == ns && entry.local == local) return entry.name;
  }
  return Name::kOther;
}

}  // namespace kestrelon::desktop::word
