// Finding and replacing in the text of a story.
#include <algorithm>

#include "desktop/word/document/ParagraphEditor.h"
#include "desktop/word/document/StoryText.h"
#include "desktop/word/document/WordErrors.h"

namespace kestrelon::desktop::word {
namespace {

// The text of a paragraph as a search sees it, and where its units stand in the whole.
struct VisibleText {
  String text;
  std::vector<size_t> places;
};

VisibleText WithoutFields(const Paragraph& paragraph) {
  VisibleText visible;
  for (const Piece& piece : paragraph.pieces) {
    if (IsField(piece.kind)) continue;
    visible.text.append(paragraph.text, piece.begin, piece.length);
    for (uint32_t i = piece.begin; i < piece.end(); ++i) visible.places.push_back(i);
  }
  return visible;
}

// Which units occur in the paragraph, roughly; worked out once until its text changes.
UnitSet UnitsOf(Paragraph& paragraph) {
  if (!paragraph.units) paragraph.units = UnitSetOf(paragraph.text);
  return *paragraph.units;
}

}  // namespace

FindPattern::Match StoryText::FindInParagraph(const FindPattern& pattern,
                                              const Paragraph& paragraph, size_t from) {
  if (!paragraph.has_fields) return pattern.FindIn(paragraph.text, from);
  const VisibleText visible = WithoutFields(paragraph);
  const auto& places = visible.places;
  const auto first = std::lower_bound(places.begin(), places.end(), from) - places.begin();
  const Match match = pattern.FindIn(visible.text, static_cast<size_t>(first));
  if (match.start == FindPattern::kNone) return match;
  const size_t start = places[match.start];
  return {start, places[match.start + match.length - 1] + 1 - start};
}

std::optional<Span> StoryText::Find(const FindPattern& pattern, Span within, bool forward) {
  within.start = std::max(within.start, 0);
  within.end = std::min(within.end, length_);
  if (pattern.empty() || within.start >= within.end) return std::nullopt;
  if (pattern.spans_paragraphs()) return FindAcross(pattern, within, forward);
  return forward ? FindForward(pattern, within) : FindBackward(pattern, within);
}

std::optional<Span> StoryText::FindForward(const FindPattern& pattern, Span within) {
  if (searched_.pattern != pattern) searched_ = {pattern, 0, 0};
  Place place = Locate(within.start);
  const auto is_before = [](const Place& a, const Searched& b) {
    return a.index < b.index || (a.index == b.index && a.offset <= b.offset);
  };
  const bool extends = is_before(place, searched_);
  if (extends) place = {searched_.index, searched_.offset};
  for (; place.index < Count(); place = {place.index + 1, 0}) {
    ExtendTo(place.index + 1);
    Paragraph& paragraph = At(place.index);
    if (paragraph.start >= within.end) break;
    if (!pattern.MayBeIn(UnitsOf(paragraph))) continue;
    const Match match = FindInParagraph(pattern, paragraph, place.offset);
    if (match.start == FindPattern::kNone) continue;
    if (extends) SetSearched({place.index, match.start});
    const int32_t start = paragraph.start + static_cast<int32_t>(match.start);
    const Span found = {start, start + static_cast<int32_t>(match.length)};
    return found.end <= within.end ? std::optional(found) : std::nullopt;
  }
  if (extends) SetSearched(place);
  return std::nullopt;
}

std::optional<Span> StoryText::FindBackward(const FindPattern& pattern, Span within) {
  for (size_t index = Locate(within.end - 1).index + 1; index-- > 0;) {
    const Paragraph& paragraph = At(index);
    const int32_t start = StartOf(paragraph);
    std::optional<Span> last;
    Match match = FindInParagraph(pattern, paragraph, 0);
    for (; match.start != FindPattern::kNone;
         match = FindInParagraph(pattern, paragraph, match.start + 1)) {
      const Span found = {start + static_cast<int32_t>(match.start),
                          start + static_cast<int32_t>(match.start + match.length)};
      if (found.start >= within.start && found.end <= within.end) last = found;
    }
    if (last || start <= within.start) return last;
  }
  return std::nullopt;
}

// Patterns that hold a paragraph mark are looked for in the text of the whole story.
std::optional<Span> StoryText::FindAcross(const FindPattern& pattern, Span within, bool forward) {
  VisibleText visible;
  const Place first = Locate(within.start);
  for (size_t i = first.index; i < Count(); ++i) {
    const Paragraph& paragraph = At(i);
    const auto start = static_cast<size_t>(StartOf(paragraph));
    if (start >= static_cast<size_t>(within.end)) break;
    const VisibleText one = WithoutFields(paragraph);
    visible.text += one.text;
    for (const size_t place : one.places) visible.places.push_back(start + place);
    visible.text += paragraph.mark == Mark::kParagraph ? u'\r' : u'\a';
    visible.places.push_back(start + paragraph.text.size());
  }
  std::optional<Span> last;
  for (size_t from = 0; from < visible.text.size();) {
    const Match match = pattern.FindIn(visible.text, from);
    if (match.start == FindPattern::kNone) break;
    from = match.start + 1;
    const Span found = {static_cast<int32_t>(visible.places[match.start]),
                        static_cast<int32_t>(visible.places[match.start + match.length - 1] + 1)};
    if (found.start < within.start) continue;
    if (found.end > within.end) break;
    if (forward) return found;
    last = found;
  }
  return last;
}

int32_t StoryText::ReplaceAll(const FindPattern& pattern, StringView replacement) {
  ExpandReplacement(replacement, {});  // refuses what is too long
  if (pattern.empty()) return 0;
  if (mirror_ != nullptr) mirror_->ReplaceAll(pattern, replacement);
  if (pattern.spans_paragraphs()) return ReplaceAllAcross(pattern, replacement);
  if (searched_.pattern != pattern) searched_ = {pattern, 0, 0};
  const Searched clear = searched_;
  int32_t count = 0;
  for (size_t i = clear.index; i < Count(); ++i) {
    ExtendTo(i + 1);
    if (!pattern.MayBeIn(UnitsOf(At(i)))) continue;
    count += ReplaceAllInParagraph(pattern, replacement, i, i == clear.index ? clear.offset : 0);
  }
  if (count == 0) SetSearched({Count(), 0});
  return count;
}

int32_t StoryText::ReplaceAllInParagraph(const FindPattern& pattern, StringView replacement,
                                         size_t index, size_t offset) {
  Paragraph& paragraph = At(index);
  int32_t count = 0;
  while (true) {
    const Match match = FindInParagraph(pattern, paragraph, offset);
    if (match.start == FindPattern::kNone) return count;
    const String clean = CleanText(ExpandReplacement(
        replacement, StringView(paragraph.text).substr(match.start, match.length)));
    const size_t put =
        ParagraphEditor(*this, paragraph).Replace(match.start, match.start + match.length, clean);
    offset = put + clean.size();
    ++count;
  }
}

int32_t StoryText::ReplaceAllAcross(const FindPattern& pattern, StringView replacement) {
  int32_t count = 0;
  int32_t from = 0;
  while (const std::optional<Span> match = Find(pattern, {from, length_}, true)) {
    const int32_t before = length_;
    const Paragraph& last = At(Locate(match->end - 1).index);
    const bool may_go = !last.is_last || match->end < StartOf(last) + last.length();
    if (may_go && !IgnoreFailures([&] {
          ReplaceHere(*match, CleanText(ExpandReplacement(replacement, Text(*match))));
        })) {
      ++count;
    }
    from = match->end + length_ - before;
  }
  return count;
}

}  // namespace kestrelon::desktop::word
