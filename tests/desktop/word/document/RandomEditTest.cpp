// Random documents and random edits, held against a model that is nothing but paragraphs of
// characters. A seed that fails is printed; it makes the same document again.
#include <gmock/gmock.h>

#include <algorithm>
#include <random>

#include "tests/desktop/word/document/Builders.h"

namespace kestrelon::desktop::word {
namespace {

class Chance {
 public:
  explicit Chance(uint32_t seed) : engine_(seed) {}
  int Below(int limit) { return static_cast<int>(engine_() % static_cast<uint32_t>(limit)); }
  bool OneIn(int n) { return Below(n) == 0; }

 private:
  std::mt19937 engine_;
};

// The text of a story as Text() has it, but one unit for an end-of-cell mark: '\a'.
struct World {
  bool fields;  // there may be some
  String text;
  std::string xml;
};

void AddRun(Chance& chance, World& world) {
  const std::string format = chance.OneIn(3) ? "<w:b/>" : "";
  if (chance.OneIn(12)) {
    world.xml += Rx("<w:tab/>");
    world.text += u'\t';
    return;
  }
  if (chance.OneIn(12)) {
    world.xml += Rx("<w:drawing/>");
    world.text += u'\x01';
    return;
  }
  std::string text;
  for (int i = chance.Below(4); i >= 0; --i) text += "ab<> \xC3\xA9"[chance.Below(5)];
  std::string run = R(text, format);
  if (chance.OneIn(6)) run = Element("ins", run);
  if (chance.OneIn(6)) run = Element("sdt", Element("sdtContent", run));
  if (chance.OneIn(6)) run = "<w:proofErr/>" + run + Element("del", R("ab"));
  world.xml += run;
  world.text += FromUtf8(text);
}

// A field takes positions; a search sees its result alone.
void AddField(Chance& chance, World& world) {
  world.xml += Field("begin") + Code("ab") + Field("separate");
  world.text +=
      u"\x13"
      u"ab\x14";
  AddRun(chance, world);
  world.xml += Field("end");
  world.text += u'\x15';
}

void AddParagraph(Chance& chance, World& world) {
  world.xml += chance.OneIn(3) ? "<w:p><w:pPr><w:jc/></w:pPr>" : "<w:p>";
  for (int i = chance.Below(5); i > 0; --i) {
    world.fields&& chance.OneIn(12) ? AddField(chance, world) : AddRun(chance, world);
  }
  world.xml += "</w:p>";
}

World MakeWorld(Chance& chance, bool fields) {
  World world = {fields, {}, {}};
  for (int i = 2 + chance.Below(8); i > 0; --i) {
    if (chance.OneIn(5)) {
      world.xml += "<w:tbl><w:tr><w:tc>";
      AddParagraph(chance, world);
      world.xml += "</w:tc><w:tc>";
      world.text += u'\a';
      AddParagraph(chance, world);
      world.xml += "</w:tc></w:tr></w:tbl>";
      world.text += u"\a\a";
    } else {
      AddParagraph(chance, world);
      world.text += u'\r';
    }
  }
  world.xml += "<w:p/>";
  world.text += u'\r';
  return world;
}

String TextAsModel(const Story& story) { return ReplaceAll(TextOf(story), u"\r\a", u"\a"); }

Span RandomSpan(Chance& chance, const String& text) {
  const int start = chance.Below(static_cast<int>(text.size()));
  const int length = chance.Below(6);
  return {start, std::min(start + length, static_cast<int>(text.size()))};
}

String RandomText(Chance& chance) {
  String text;
  for (int i = chance.Below(6); i > 0; --i) text += u"xy<>\v\t"[chance.Below(6)];
  return text;
}

// What a search sees of the text, and where.
struct Visible {
  String text;
  std::vector<int32_t> places;
};

Visible VisiblePart(const String& text, Span within) {
  Visible visible;
  bool in_code = false;
  for (int32_t i = 0; i < within.end; ++i) {
    const char16_t unit = text[static_cast<size_t>(i)];
    if (unit == 0x13) in_code = true;
    if (!in_code && unit != 0x15 && i >= within.start) {
      visible.text += unit;
      visible.places.push_back(i);
    }
    if (unit == 0x14) in_code = false;
  }
  return visible;
}

void CheckFind(Chance& chance, Story& story, const String& text) {
  const String needles[] = {u"<", u"a", u"ab", u"b>", u"x<", u"<>"};
  const String& needle = needles[chance.Below(6)];
  const Span within =
      chance.OneIn(2) ? Span{0, static_cast<int32_t>(text.size())} : RandomSpan(chance, text);
  const bool forward = !chance.OneIn(4);
  const Visible visible = VisiblePart(text, within);
  const size_t at = forward ? visible.text.find(needle) : visible.text.rfind(needle);
  std::optional<Span> expected;
  if (at != String::npos) {
    expected = Span{visible.places[at], visible.places[at + needle.size() - 1] + 1};
  }
  EXPECT_EQ(story.Find(FindPattern(needle, true), within.start, within.end, forward), expected);
}

// Whether the span holds or touches field characters, which an edit may leave.
bool TouchesField(const String& text, Span span) {
  const auto begin = static_cast<size_t>(std::max(span.start - 3, 0));
  const auto count = static_cast<size_t>(span.end + 3) - begin;
  return text.substr(begin, count).find_first_of(u"\x13\x14\x15") != String::npos;
}

// The model of an edit within one paragraph, or over paragraph marks outside tables.
void Edit(Chance& chance, Story& story, String& text, Span& tracked) {
  const Span span = RandomSpan(chance, text);
  if (TouchesField(text, span)) return;
  const auto start = static_cast<size_t>(span.start);
  const auto count = static_cast<size_t>(span.end - span.start);
  const bool at_row_mark = text[start] == u'\a' && (start == 0 || text[start - 1] == u'\a');
  const String inside = text.substr(start, count);
  const bool in_paragraph = inside.find_first_of(u"\r\a") == String::npos;
  if (!in_paragraph || at_row_mark) {
    const bool is_plain = inside.find(u'\a') == String::npos && start + count + 1 < text.size();
    if (!is_plain || text.substr(start + count).find_first_of(u"\r") !=
                         text.substr(start + count).find_first_of(u"\r\a")) {
      return;
    }
    story.Delete(span);
    text.erase(start, count);
  } else {
    const String put = RandomText(chance);
    EXPECT_EQ(story.Replace(span, put),
              (Span{span.start, span.start + static_cast<int>(put.size())}));
    text.replace(start, count, put);
    const auto move = [&](int32_t& end) {
      const auto grown = static_cast<int32_t>(put.size());
      if (end >= span.end && end > span.start) {
        end += grown - (span.end - span.start);
      } else if (end > span.start) {
        end = span.start + grown;
      }
    };
    move(tracked.start);
    move(tracked.end);
    return;
  }
  for (int32_t* end : {&tracked.start, &tracked.end}) {
    if (*end > span.start) *end = std::max(span.start, *end - static_cast<int32_t>(count));
  }
}

TEST(RandomEdit, KeepsTextPositionsAndTrackedSpans) {
  for (uint32_t seed = 1; seed <= 400; ++seed) {
    SCOPED_TRACE(seed);
    Chance chance(seed);
    const World world = MakeWorld(chance, true);
    SCOPED_TRACE(world.xml);
    const auto document = Open(world.xml);
    Story& story = document->Main();
    String text = world.text;
    ASSERT_EQ(TextAsModel(story), text);
    Span tracked = RandomSpan(chance, text);
    const TrackedSpan span(story, tracked);
    for (int step = 0; step < 30; ++step) {
      CheckFind(chance, story, text);
      Edit(chance, story, text, tracked);
      ASSERT_EQ(story.Length(), static_cast<int32_t>(text.size()));
      ASSERT_EQ(TextAsModel(story), text) << "step " << step;
      ASSERT_EQ(span.span(), tracked) << "step " << step;
    }
    const auto again = Document::Open(document->Save(DocumentKind::kDocx));
    ASSERT_EQ(TextAsModel(again->Main()), text);
  }
}

TEST(RandomEdit, ReplaceAllIsThatOfPlainText) {
  for (uint32_t seed = 1; seed <= 200; ++seed) {
    SCOPED_TRACE(seed);
    Chance chance(seed);
    const World world = MakeWorld(chance, false);
    const auto document = Open(world.xml);
    Story& story = document->Main();
    story.Find(FindPattern(u"ab", false), 0, story.Length());
    story.ReplaceAll(FindPattern(u"ab", false), u"<ab>");
    EXPECT_EQ(TextAsModel(story), ReplaceAll(world.text, u"ab", u"<ab>"));
  }
}

}  // namespace
}  // namespace kestrelon::desktop::word
