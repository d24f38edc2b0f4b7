// Inserts whatever comes as an HTML file: into an empty document, a cell and the middle of a run.
#include <cstdint>

#include "desktop/word/html/InsertedFile.h"
#include "tests/desktop/word/document/Builders.h"
#include "tests/fuzz/Require.h"

namespace kestrelon::desktop::word {
namespace {

void TryPage(std::string_view page) {
  for (const int32_t place : {0, 2, 5}) {
    const auto document = Open(P(R("ab")) + Tbl(Tr(C("cd"))) + P());
    Story& story = document->Main();
    const TrackedSpan all(story, {0, story.Length()});
    const auto failure = IgnoreFailures([&] {
      story.InsertBlocks({place, place + 1}, html::BlocksOfHtml(page));
    });
    Require(!failure || failure->number() != 5792);  // the markup is well-formed
    const auto again = Document::Open(document->Save(DocumentKind::kDocx));
    Require(TextOf(again->Main()) == TextOf(story));
    Require(all.span().start == 0 && all.span().end == story.Length());
  }
}

}  // namespace
}  // namespace kestrelon::desktop::word

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  kestrelon::desktop::word::TryPage({reinterpret_cast<const char*>(data), size});
  return 0;
}
