#include "desktop/word/document/Story.h"

#include <utility>

#include "desktop/word/document/StoryText.h"
#include "desktop/word/document/WordErrors.h"

namespace kestrelon::desktop::word {

namespace {

// A text in all its copies, each the mirror of the one before.
std::unique_ptr<StoryText> ReadCopies(DocumentPart& part, const std::vector<NodeId>& copies) {
  std::unique_ptr<StoryText> text;
  for (auto copy = copies.rbegin(); copy != copies.rend(); ++copy) {
    auto front = std::make_unique<StoryText>(part, std::vector{*copy});
    front->set_mirror(std::move(text));
    text = std::move(front);
  }
  return text;
}

}  // namespace

Story::Story(Document& document, StoryType type, std::unique_ptr<StoryText> text)
    : document_(document), type_(type), text_(std::move(text)) {
  text_->set_story(*this);
  for (size_t i = 0; i < text_->text_boxes().size(); ++i) {
    // A text box within a text box is there in every copy of the outer one.
    std::vector<NodeId> copies;
    for (const StoryText* outer = text_.get(); outer != nullptr; outer = outer->mirror()) {
      if (i >= outer->text_boxes().size()) continue;
      const TextBoxNodes& box = outer->text_boxes()[i];
      copies.push_back(box.content);
      if (box.fallback != kNoNode) copies.push_back(box.fallback);
    }
    text_boxes_.push_back(std::make_unique<Story>(document, StoryType::kTextFrame,
                                                  ReadCopies(text_->part(), copies)));
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

Span Story::InsertBlocks(Span span, const BlockSource& blocks) {
  return text_->InsertBlocks(span, blocks);
}

int32_t Story::MoveByParagraph(int32_t position, bool down) const {
  return text_->MoveByParagraph(position, down);
}

int32_t Story::TableCount() const { return static_cast<int32_t>(text_->TopTables().size()); }

Table* Story::TableAt(int32_t index) const {
  const std::vector<Table*> tables = text_->TopTables();
  if (index < 1 || static_cast<size_t>(index) > tables.size()) throw NoSuchMember();
  return tables[static_cast<size_t>(index) - 1];
}

std::vector<Story*> Story::TextBoxes() const {
  std::vector<Story*> present;
  for (const auto& box : text_boxes_) {
    if (!box->text_->IsPresent()) continue;
    present.push_back(box.get());
    const std::vector<Story*> inner = box->TextBoxes();
    present.insert(present.end(), inner.begin(), inner.end());
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
