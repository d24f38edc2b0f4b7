#include "documents/TagPattern.h"

#include <unordered_map>
#include <utility>

namespace kestrelon {
namespace {

constexpr StringView kOpening = u"&lt;";
constexpr StringView kClosing = u"&gt;";

// Whether `text` ends in the middle of an opening.
bool EndsInOpening(StringView text) {
  for (size_t length = 1; length < kOpening.size(); ++length) {
    if (text.ends_with(kOpening.substr(0, length))) return true;
  }
  return false;
}

// Whether the end of `text` can be the beginning of a tag.
bool LeavesTagOpen(StringView text) {
  const size_t opening = text.rfind(kOpening);
  if (opening == StringView::npos) return EndsInOpening(text);
  return text.find(kClosing, opening) == StringView::npos || EndsInOpening(text);
}

}  // namespace

String TagText(StringView name) { return String(kOpening).append(name).append(kClosing); }

TaggedField::TaggedField(String name_text, String tag_text)
    : name(std::move(name_text)),
      tag(std::move(tag_text)),
      name_in_text(TagText(name)),
      tag_in_text(TagText(tag)) {}

String FillField(StringView text, const TaggedField& field, StringView value) {
  return ReplaceAll(ReplaceAll(text, field.tag_in_text, value), field.name_in_text, value);
}

// Names are in upper case, so that none holds an opening or a closing: a tag ends at the first
// closing behind its opening, and no two tags overlap. That is why one walk finds the tags that the
// fields in turn would find, each for the first field that it belongs to.
TagPattern::TagPattern(StringView text, const std::vector<TaggedField>& fields,
                       size_t first_field) {
  std::unordered_map<StringView, size_t> field_of_tag;
  for (size_t f = first_field; f < fields.size(); ++f) {
    field_of_tag.emplace(fields[f].tag, f);
    field_of_tag.emplace(fields[f].name, f);
  }
  size_t from = 0;
  for (size_t opening = text.find(kOpening); opening != StringView::npos;
       opening = text.find(kOpening, opening)) {
    const size_t inside = opening + kOpening.size();
    const size_t closing = text.find(kClosing, inside);
    if (closing == StringView::npos) break;
    const auto field = field_of_tag.find(text.substr(inside, closing - inside));
    if (field == field_of_tag.end()) {
      opening = inside;
      continue;
    }
    const StringView before = text.substr(from, opening - from);
    is_closed_ = is_closed_ && !LeavesTagOpen(before);
    places_.push_back({String(before), field->second});
    from = opening = closing + kClosing.size();
  }
  rest_ = text.substr(from);
}

bool TagPattern::IsPlainValue(StringView value) {
  return value.find(kOpening) == StringView::npos && !EndsInOpening(value);
}

void TagPattern::AppendFilled(const std::vector<String>& values, String& out) const {
  for (const Place& place : places_) out.append(place.text_before).append(values[place.field]);
  out.append(rest_);
}

}  // namespace kestrelon
