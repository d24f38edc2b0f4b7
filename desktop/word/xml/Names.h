// The elements of a document that the text engine knows, by namespace and local name. Prefixes are
// whatever a file declares; transitional and strict files use different URIs for the same names.
#pragma once

#include <cstdint>
#include <string_view>

namespace kestrelon::desktop::word {

enum class Namespace : uint8_t { kOther, kWord, kCompatibility, kMath, kWord2010, kWord2012 };

enum class Name : uint8_t {
  kGap,    // not an element: characters, comments and instructions between elements
  kOther,  // an element that is not in this list
  // Parts and stories.
  kBody,
  kComment,
  kComments,
  kDocument,
  kEndnote,
  kEndnotes,
  kFooter,
  kFootnote,
  kFootnotes,
  kHeader,
  kTextBoxContent,
  // Blocks.
  kParagraph,
  kParagraphProperties,
  kSectionProperties,
  kHeaderReference,
  kFooterReference,
  kTable,
  kTableHeader,
  kRow,
  kRowProperties,
  kCell,
  kCellProperties,
  kTableExceptions,
  // What text may stand in.
  kAlternateContent,
  kChoice,
  kFallback,
  kBidirectional,
  kControl,
  kControlContent,
  kControlProperties,
  kCustomXml,
  kDataBinding,
  kDirection,
  kHyperlink,
  kInserted,
  kDeleted,
  kMovedFrom,
  kMovedFromStart,
  kMovedFromEnd,
  kMovedTo,
  kPlaceholderShown,
  kRichDataBinding,
  kRichText,
  kSimpleField,
  kSmartTag,
  // Where a comment is anchored.
  kCommentStart,
  kCommentEnd,
  kCommentReference,
  // Runs and what is in them.
  kRun,
  kRunProperties,
  kRunPropertiesChange,
  kText,
  kBreak,
  kCarriageReturn,
  kDrawing,
  kEndnoteMark,
  kEndnoteReference,
  kFieldCharacter,
  kFieldCode,
  kFootnoteMark,
  kFootnoteReference,
  kMath,
  kMathParagraph,
  kNoBreakHyphen,
  kObject,
  kPicture,
  kPositionedTab,
  kRuby,
  kSoftHyphen,
  kSymbol,
  kTab,
};

Namespace NamespaceOfUri(std::string_view uri);
Name FindName(Namespace ns, std::string_view local);

}  // namespace kestrelon::desktop::word
