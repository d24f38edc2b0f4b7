// Reads, edits, writes and reads again whatever comes as a document. Input that begins like a zip
// is a whole package; any other is the main part of one.
#include <cstdint>

#include "tests/desktop/word/document/Builders.h"
#include "tests/fuzz/Require.h"

namespace kestrelon::desktop::word {
namespace {

constexpr int32_t kLongest = 1 << 20;

std::vector<Story*> AllStories(Document& document) {
  std::vector<Story*> stories;
  for (Story* story : document.FirstStories()) {
    for (; story != nullptr; story = document.NextStory(*story)) stories.push_back(story);
  }
  return stories;
}

std::vector<String> AllTexts(Document& document) {
  std::vector<String> texts;
  for (const Story* story : AllStories(document)) texts.push_back(TextOf(*story));
  return texts;
}

void EditTables(Story& story) {
  for (int32_t i = 1; i <= story.TableCount() && i <= 4; ++i) {
    Table& table = *story.TableAt(i);
    table.AddRow();
    const int32_t row = table.RowCount();
    for (int32_t column = 1; column <= table.ColumnCount(); ++column) {
      IgnoreFailures([&] { table.CellAt(row, column)->SetText(u"v\tw\nx"); });
      IgnoreFailures([&] { table.CellAt(1, column)->SetText(u""); });
    }
  }
}

// Spans all over the story; where they stand follows from its length, so that a run can be
// repeated.
void EditSpans(Story& story) {
  const TrackedSpan all(story, {0, story.Length()});
  for (int32_t step = 1; step <= 12; ++step) {
    const int32_t length = story.Length();
    const int32_t start = step * 7919 % length;
    const Span span = {start, std::min(start + step * 31 % 17, length)};
    IgnoreFailures(
        [&] { step % 3 == 0 ? story.Delete(span) : (void)story.Replace(span, u"<a>\n"); });
    Require(all.span().end == story.Length() && all.span().start == 0);
    Require(!story.Find(FindPattern(u"<a>", false), 0, story.Length()) ||
            TextOf(story).find(u'>') != String::npos);
  }
}

void Edit(Document& document) {
  for (Story* story : AllStories(document)) {
    if (story->Length() > kLongest) continue;
    EditTables(*story);
    story->ReplaceAll(FindPattern(u"<a>", false), u"b^p^&");
    EditSpans(*story);
    IgnoreFailures([&] { story->ReplaceAll(FindPattern(u"^p^?", false), u"^&"); });
  }
}

void TryDocument(std::string package) {
  std::unique_ptr<Document> document;
  std::vector<String> texts;
  try {
    document = Document::Open(std::move(package));
    texts = AllTexts(*document);
  } catch (const AutomationError&) {
    return;
  }
  Require(AllTexts(*Document::Open(document->Save(DocumentKind::kDocm))) == texts);
  Edit(*document);
  const std::string saved = document->Save(DocumentKind::kDocx);
  Require(AllTexts(*Document::Open(saved)) == AllTexts(*document));
}

}  // namespace
}  // namespace kestrelon::desktop::word

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  namespace word = kestrelon::desktop::word;
  std::string input(reinterpret_cast<const char*>(data), size);
  word::TryDocument(input.starts_with("PK") ? input : word::Packed(input));
  return 0;
}
