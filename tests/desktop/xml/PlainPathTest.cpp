// Plain paths against the same query in parentheses, which libxml2 evaluates.
#include <gtest/gtest.h>

#include "desktop/xml/PlainPath.h"
#include "desktop/xml/XmlDocuments.h"
#include "tests/support/Dice.h"

namespace kestrelon::desktop {
namespace {

using testing::Dice;

// Every element has a number of its own, `u`.
String RandomElement(Dice& dice, int depth, int& number) {
  static const std::vector<String> kNames = {u"a", u"a", u"a", u"b", u"p:a", u"a-b.c"};
  static const std::vector<String> kAttributes = {
      u" n='x'", u" n=''", u" p:n='x'", u" m='x'", u" n='&lt;x'", u" n=\"'\"", u" n='X'", u""};
  static const std::vector<String> kNamespaces = {u"",         u"", u"", u"", u" xmlns='urn:d'",
                                                  u" xmlns=''"};
  const String name = dice.OneOf(kNames);
  String markup = u"<" + name + u" u='" + FromUtf8(std::to_string(++number)) + u"'" +
                  dice.OneOf(kNamespaces) + dice.OneOf(kAttributes) + u">text";
  for (size_t i = depth == 0 ? 0 : dice.Roll(4); i > 0; --i) {
    markup += RandomElement(dice, depth - 1, number);
  }
  return markup + u"<!--c--></" + name + u">";
}

String RandomPath(Dice& dice) {
  static const std::vector<String> kSteps = {u"a", u"a", u"a", u"a", u"b", u"a-b.c", u"r"};
  static const std::vector<String> kTests = {u"[@n='x']",   u"[@n='']",   u"[@n=\"'\"]",
                                             u"[@m='x']",   u"[@n='X']",  u"[@n='<x']",
                                             u"[@u=\"3\"]", u"[@none='']"};
  String path = dice.OneOf({u"/r/", u"/r/", u"/", u"r/", u"", u""});
  for (size_t steps = dice.Roll(3);; --steps) {
    path += dice.OneOf(kSteps);
    if (dice.Roll(3) == 0) path += dice.OneOf(kTests);
    if (steps == 0) return path;
    path += u"/";
  }
}

String NumbersOf(const Object& nodes) {
  String numbers;
  const auto walk = nodes.Enumerate();
  while (const auto node = walk->Next()) {
    const Value number = node->ToObject().Call(u"getAttribute", u"u");
    numbers += (number.IsNull() ? u"root" : number.ToText()) + u" ";
  }
  return numbers;
}

TEST(PlainPath, SelectsWhatXPathSelects) {
  Dice dice;
  int found = 0;
  for (int round = 0; round < 300; ++round) {
    int number = 0;
    String markup = u"<r xmlns:p='urn:p'>";
    for (int i = 0; i < 3; ++i) markup += RandomElement(dice, 3, number);
    const Object document = CreateXmlDocument();
    ASSERT_TRUE(document.Call(u"loadXML", markup + u"</r>").ToBoolean());
    const Object starts = document.CallChild(u"selectNodes", u"/ | //node() | //@*");
    const auto count = static_cast<size_t>(starts.Get(u"length").ToLong());
    for (int query = 0; query < 30; ++query) {
      const String path = RandomPath(dice);
      ASSERT_TRUE(PlainPath::Parse(ToUtf8(path))) << ToUtf8(path);
      const size_t position = dice.Roll(dice.Roll(2) == 0 ? 2 : count);
      const Object start = starts.CallChild(u"item", static_cast<int32_t>(position));
      const String expected = NumbersOf(start.CallChild(u"selectNodes", u"(" + path + u")"));
      EXPECT_EQ(NumbersOf(start.CallChild(u"selectNodes", path)), expected) << ToUtf8(path);
      const Object first = start.CallChild(u"selectSingleNode", path);
      EXPECT_EQ(first.IsNothing(), expected.empty()) << ToUtf8(path);
      found += expected.empty() ? 0 : 1;
    }
  }
  EXPECT_GT(found, 500);
}

TEST(PlainPath, LeavesEverythingElseToXPath) {
  const String expressions =
      u"; /; a//b; *; .; ../a; @n; p:a; text(); child::a; 1a; a b; a[1]; a[@n]; a[@n='1'; "
      u"a[@n='1\"]; a[@n=1]; a[@p:n='1']; a[@n='1'][@m='2']; a[@n='1' or @m='2']; a[@n='it's']; "
      u"a|b; a[@n='\x01']; \u00E9";
  for (const String& expression : Split(expressions, u"; ")) {
    EXPECT_FALSE(PlainPath::Parse(ToUtf8(expression))) << ToUtf8(expression);
  }
  EXPECT_FALSE(PlainPath::Parse({"a\0", 2}));
  EXPECT_FALSE(PlainPath::Parse({"a[@n='\0']", 9}));
}

}  // namespace
}  // namespace kestrelon::desktop
