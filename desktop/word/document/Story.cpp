#include "desktop/word/document/Story.h"

#include <utility>

#include "desktop/word/document/StoryText.h"
#include "desktop/word/document/WordErrors.h"

namespace kestrelon::desktop::word {

Story::Story(Document& document, StoryType type, std::unique_ptr<StoryText> text)
    : document_(document), type_(type), text_(std::move(text)) {
  text_->set_story(*this);
  DocumentPart& part = text_->part();
  for (const TextBoxNodes& box : text_->text_boxes()) {
    auto content = std::make_unique<StoryText>(part, std::vector{box.content});
    if (box.fallback != kNoNode) {
      content->set_mirror(std::make_unique<StoryText>(part, std::vector{box.fallback}));
    }
    text_boxes_.push_back(
        std::make_unique<Story>(document, StoryType::kTextFrame, std::move(content)));
  }
}

Story::~Story() = default;

int32_t Story::Length() const { return text_->length(); }
String Story::Text(Span span) const { return text_->Text(span); }
bool Story::IsInTable(Span span) const { return text_->IsInTable(span); }

std::optional<Span> Story::Find(const FindPattern& pattern, int32_t from, int32_t to,
                                bool forward) {
  return text_->Find(pattern, {from, to}, forward);
}

Span Story::Replace(Span span, StringView text) { return text_->Replace(span, text); }

int32_t Story::ReplaceAll(const FindPattern& pattern, StringView replacement) {
  return text_->ReplaceAll(pattern, replacement);
}

void Story::Delete(Span span) { text_->Delete(span); }

int32_t Story::TableCount() const { return static_cast<int32_t>(text_->TopTables().size()); }

Table* Story::TableAt(int32_t index) const {
  const std::vector<Table*> tables = text_->TopTables();
  if (index < 1 || static_cast<size_t>(index) > tables.size()) throw NoSuchMember();
  return tables[static_cast<size_t>(index) - 1];
}

std::vector<Story*> Story::TextBoxes() const {
  std::vector<Story*> present;
  for (const auto& box : text_boxes_) {
    if (box->text_->IsPresent()) present.push_back(box.get());
  }
  return present;
}

int32_t Story::TextBoxCount() const { return static_cast<int32_t>(TextBoxes().size()); }

Story* Story::TextBoxAt(int32_t index) const {
  const std::vector<Story*> boxes = TextBoxes();
  if (index < 1 || static_cast<size_t>(index) > boxes.size()) throw NoSuchMember();
  return boxes[static_cast<size_t>(index) - 1];
}

TrackedSpan::TrackedSpan(Story& story, Span span)
    : story_(&story), ends_(std::make_unique<TrackedEnds>()) {
  Set(span);
  story.text_->Track(*ends_);
}

TrackedSpan::TrackedSpan(TrackedSpan&& other) noexcept = default;

TrackedSpan& TrackedSpan::operator=(TrackedSpan&& other) noexcept {
  std::swap(story_, other.story_);
  std::swap(ends_, other.ends_);
  return *this;
}

TrackedSpan::~TrackedSpan() {
  if (ends_ != nullptr) story_->text_->Untrack(*ends_);
}

Span TrackedSpan::span() const {
  StoryText& text = *story_->text_;
  return {text.PositionOf(ends_->start), text.PositionOf(ends_->end)};
}

void TrackedSpan::Set(Span span) {
  StoryText& text = *story_->text_;
  if (span.start < 0 || span.start > span.end || span.end > text.length()) throw ValueOutOfRange();
  *ends_ = {text.AnchorAt(span.start), text.AnchorAt(span.end)};
}

}  // namespace kestrelon::desktop::word
