#include <gmock/gmock.h>

#include "desktop/outlook/formats/ContentLines.h"
#include "desktop/outlook/formats/UserFieldLines.h"

namespace kestrelon::desktop {
namespace {

using testing::ElementsAre;

constexpr const char* kNested =
    "junk\nBEGIN:A\nx:1\nBEGIN:B\nx:2\nEND:B\nBEGIN:LONE\ny;P=a,\"b,c:d\";q=^^^'^n;BARE:3\nEND:A\n"
    "BEGIN:A\nx:no\n end";

TEST(ContentLines, FindsLinesInTheirComponent) {
  const ContentLines lines(kNested);
  const Component first = *lines.FindComponent("a", lines.Whole());
  const size_t x = *lines.Find("X", first);
  EXPECT_EQ(lines.RawValue(x), "1");
  EXPECT_FALSE(lines.Find("x", first, x + 1));
  EXPECT_EQ(lines.RawValue(*lines.Find("x", first, x + 1, true)), "2");
  const std::vector<Parameter> parameters = lines.Parameters(*lines.Find("y", first));
  EXPECT_THAT(FindParameter(parameters, "P")->values, ElementsAre("a", "b,c:d"));
  EXPECT_THAT(FindParameter(parameters, "Q")->values, ElementsAre("^\"\n"));
  EXPECT_THAT(FindParameter(parameters, "")->values, ElementsAre("BARE"));
  const Component open = *lines.FindComponent("A", lines.Whole(), first.end);
  EXPECT_EQ(lines.RawValue(*lines.Find("x", open)), "noend");
}

TEST(ContentLines, EditsOneLineAndKeepsTheBytesOfTheOthers) {
  const std::string head = "BEGIN:A\r\n\r\n# comment\r\n";
  const std::string tail = "z;w=\r\n a:un\r\n touched\r\nEND:A";
  ContentLines lines(head + "g.Name;T=\"u\":old\r\n  value\r\n" + tail);
  const size_t line = *lines.Find("name", *lines.FindComponent("A", lines.Whole()));
  // 75 octets a line, no sequence cut in two.
  std::string value;
  for (int i = 0; i < 50; ++i) value += "\xC3\xA4";
  lines.SetRawValue(line, value);
  EXPECT_EQ(lines.RawValue(line), value);
  EXPECT_EQ(lines.text(), head + "g.Name;T=\"u\":" + value.substr(0, 62) + "\r\n " +
                              value.substr(62) + "\r\n" + tail);
  lines.SetParameter(line, "t", "a\"b\n;");
  lines.SetRawValue(line, "v");
  lines.SetParameter(line, "NEW", "n");
  EXPECT_EQ(lines.text(), head + "g.Name;t=\"a^'b^n;\";NEW=n:v\r\n" + tail);
  lines.Remove(line);
  EXPECT_EQ(lines.text(), head + tail);
  lines.Insert(lines.size(), "last:1");
  EXPECT_EQ(lines.text(), head + tail + "\r\nlast:1\r\n");
}

TEST(ContentLines, SoftLineBreaksBelongToTheValue) {
  ContentLines lines(
      "BEGIN:V\nA;QUOTED-PRINTABLE:one=\n=20two=\n three\nB:x=\nC;ENCODING=QUOTED-PRINTABLE:end=\n"
      "END:V\n");
  Component component = *lines.FindComponent("V", lines.Whole());
  EXPECT_EQ(lines.RawValue(*lines.Find("A", component)), "one=20two three");
  EXPECT_EQ(lines.RawValue(*lines.Find("B", component)), "x=");
  // What is added behind an unfinished value does not become part of it.
  PutUserField(lines, component, {u"KESTID", 1, u"7"});
  const ContentLines again(lines.text());
  EXPECT_EQ(FindUserField(again, *again.FindComponent("V", again.Whole()), u"kestid")->value, u"7");
}

TEST(ContentLines, UserFieldsAreFoundByNameWithoutRegardToCase) {
  ContentLines lines("BEGIN:V\nEND:V\n");
  Component component = *lines.FindComponent("V", lines.Whole());
  PutUserField(lines, component, {u"Größe \"x\": a;b", 1, u"1,2\r\n3\\"});
  PutUserField(lines, component, {u"other", 6, u""});
  PutUserField(lines, component, {u"GRÖSSE", 1, u"kept apart"});
  // No program reads a NUL in the middle of a line.
  PutUserField(lines, component, {u"OTHER", 3, String(u"t\0\v\te", 5)});
  const std::vector<UserField> fields = ReadUserFields(lines, component);
  ASSERT_EQ(fields.size(), 3u);
  EXPECT_EQ(FindUserField(lines, component, u"GRÖßE \"X\": A;B")->value, u"1,2\r\n3\\");
  EXPECT_EQ(fields[1].name, u"other");
  EXPECT_EQ(fields[1].type, 3);
  EXPECT_EQ(fields[1].value, u"t  \te");
  for (const UserField& field : fields) RemoveUserField(lines, component, field.name);
  EXPECT_EQ(lines.text(), "BEGIN:V\nEND:V\n");
}

}  // namespace
}  // namespace kestrelon::desktop
