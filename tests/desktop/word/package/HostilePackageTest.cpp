// Each way in which a file may be damaged or set against its reader, and what is said about it.
#include <gmock/gmock.h>

#include "automation/Text.h"
#include "desktop/word/package/Package.h"
#include "desktop/word/package/ZipFields.h"
#include "desktop/word/package/ZipReader.h"
#include "tests/desktop/word/package/ZipBuilder.h"

namespace kestrelon::desktop::word {
namespace {

using testing::HasSubstr;

// "" when the file opens and all of it can be read.
std::string Complaint(const std::string& bytes) {
  try {
    const auto package = Package::Open(bytes);
    for (const std::string& name : package->PartNames()) {
      package->Content(name);
      package->Relationships(name);
    }
    package->Relationships("");
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.number(), kCorruptDocument);
    return ToUtf8(error.description());
  }
  return "";
}

// A pattern that deflates well but not to a thousandth.
std::string Text(size_t size) {
  std::string text = "<t>";
  for (uint32_t i = 1; text.size() < size; i = i * 1103515245u + 12345u) {
    text.append("blank ").append(1, static_cast<char>('a' + (i >> 16) % 26));
  }
  text.resize(size, ' ');
  return text;
}

std::string Repeated(const std::string& text, int count) {
  std::string all;
  for (int i = 0; i < count; ++i) all += text;
  return all;
}

std::string Utf16(const std::string& ascii) {
  std::string bytes = "\xFF\xFE";
  for (const char c : ascii) bytes.append({c, '\0'});
  return bytes;
}

struct EntryCase {
  const char* oddity;
  TestEntry entry;
  const char* says;
};

void ExpectRefusals(const std::vector<EntryCase>& cases) {
  for (const EntryCase& test : cases) {
    SCOPED_TRACE(test.oddity);
    std::vector<TestEntry> entries = MinimalEntries();
    entries.push_back(test.entry);
    EXPECT_THAT(Complaint(BuildZip(entries)), HasSubstr(test.says));
  }
}

TestEntry Xml(const std::string& content) { return {.name = "x.xml", .content = content}; }

TEST(HostilePackage, RefusesAnEntryThatIsNotWhatItShouldBe) {
  ExpectRefusals({
      {"encrypted", {.flags = kFlagEncrypted}, "is encrypted"},
      {"unknown method", {.method = 14}, "method 14"},
      {"on another disk", {.disk = 1}, "split archive"},
      {"zip64", {.size = 0xFFFFFFFF}, "zip64"},
      {"double", {.name = "word/document.xml"}, "there twice"},
      {"double but for case", {.name = "WORD/Document.XML"}, "there twice"},
      {"double but for escapes", {.name = "word/d%6Fcument.xml", .content = ""}, "there twice"},
      {"absolute name", {.name = "/etc/passwd"}, "absolute"},
      {"parent folder", {.name = "word/../../x"}, "leads outside"},
      {"parent folder in disguise", {.name = "word/%2E%2e/x"}, "leads outside"},
      {"backslash", {.name = "word\\x"}, "backslash"},
      {"drive", {.name = "C:/x"}, "drive"},
      {"control character", {.name = std::string("a\0b", 3)}, "\"a?b\""},
      {"nameless", {.name = ""}, "empty name"},
      {"other local name", {.local_name = "z"}, "two different ways"},
      {"other local size", {.local_size = 2}, "two different ways"},
      {"wrong checksum", {.crc = 1}, "checksum"},
      {"wrong checksum, stored", {.deflate = false, .crc = 1}, "checksum"},
      {"stored in two sizes", {.deflate = false, .size = 2}, "two different sizes"},
      {"no deflate data",
       {.content = "\xFF\xFF\xFF", .deflate = false, .method = 8},
       "does not inflate"},
      {"less than it says", {.size = 2}, "does not inflate"},
      {"rubbish behind its data",
       {.content = Deflated("y") + "z",
        .deflate = false,
        .crc = 0xFBDB2615,
        .size = 1,
        .method = 8},
       "does not inflate"},
      {"overlapping", {.local_name = "_rels/.rels", .offset = 0}, "two different ways"},
      {"beyond the file", {.compressed_size = 0x7FFFFFFF}, "longer than the file"},
  });
}

TEST(HostilePackage, RefusesAnEntryThatInflatesToAnotherSizeThanItSays) {
  const std::string large = Text(200'000);
  ExpectRefusals({
      {"beyond the limit", {.size = (256u << 20) + 1}, "256 MiB"},
      {"bomb", {.content = std::string(200'000, 'a')}, "100 times"},
      {"bomb that hides its size",
       {.content = std::string(9'000'000, 'a'), .size = 9},
       "more than it says"},
      {"large and hides its size",
       {.content = Text(9'000'000), .size = 5'000'000},
       "more than it says"},
      {"large and ends early", {.content = large, .size = 5'000'000}, "100 times"},
      {"large and ends a little early",
       {.content = Text(5'000'000), .size = 5'000'001},
       "does not inflate"},
  });
}

TEST(HostilePackage, RefusesAnXmlPartThatIsHostileOrCutOff) {
  ExpectRefusals({
      {"DOCTYPE", Xml("<?xml version='1.0'?><!-- --><!DOCTYPE t><t/>"), "DOCTYPE"},
      {"DOCTYPE in UTF-16", Xml(std::string("\xFF\xFE<\0!\0D\0O\0C\0T\0", 14)), "DOCTYPE"},
      {"DOCTYPE far behind", Xml(std::string(70'000, '\n') + "<!DOCTYPE"), "has a DOCTYPE"},
      {"deep in UTF-16", Xml(Utf16(Repeated("<a>", 300))), "256 levels"},
      {"deep behind a comment that only looks closed",
       Xml("<!--><a b='-->" + Repeated("<a>", 300) + "'/>"), "256 levels"},
      {"deep and large", Xml(Text(5'000'000) + Repeated("<a>", 300)), "256 levels"},
      {"cut between elements", Xml("<a><b/>"), "ends before"},
      {"cut in a tag", Xml("<a/><b c='>"), "ends before"},
      {"cut in a comment", Xml("<a/><!-- ->"), "ends before"},
      {"closed too often", Xml("<a></a></a>"), "never opened"},
      {"no element", Xml("text"), "begin with an element"},
  });
}

TEST(HostilePackage, RefusesAnArchiveThatIsNoneOrNoSoundOne) {
  const std::vector<TestEntry> sound = MinimalEntries();
  const std::string zip = BuildZip(sound);
  std::vector<TestEntry> many = sound;
  while (many.size() <= kMostEntries) many.push_back({"p" + std::to_string(many.size()), ""});
  std::vector<TestEntry> quine = sound;
  quine[2].offset = 0;
  quine[2].local_name = quine[0].name;
  const std::string compound = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1" + std::string(100, '\0');
  const std::string stream("E\0n\0c\0r\0y\0p\0t\0e\0d\0P\0a\0c\0k\0a\0g\0e\0", 32);
  const struct {
    const char* oddity;
    std::string bytes;
    const char* says;
  } cases[] = {
      {"text", "Dear <firstname>, this is no package at all.", "does not begin as a zip"},
      {"Word 97-2003", compound, "Word 97-2003"},
      {"password", compound + stream, "password"},
      {"cut short", zip.substr(0, zip.size() - 1), "cut short"},
      {"something appended", zip + "x", "cut short"},
      {"something in front", "x" + zip, "does not begin as a zip"},
      {"split", BuildZip(sound, {.disk = 1}), "split over several"},
      {"too few counted", BuildZip(sound, {.count_off = -1}), "more than it counts"},
      {"too many counted", BuildZip(sound, {.count_off = 1}), "incomplete"},
      {"1,001 entries", BuildZip(many), "1001 entries"},
      {"one entry for two names", BuildZip(quine), "two different ways"},
      {"no content types", BuildZip({sound[1], sound[2]}), "no list of content types"},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.oddity);
    EXPECT_THAT(Complaint(test.bytes), HasSubstr(test.says));
  }
}

TEST(HostilePackage, RefusesOverlappingEntries) {
  // A second local header hidden in the stored data of the first.
  std::vector<TestEntry> entries = MinimalEntries();
  const std::string inner = BuildZip({{"inner", "content"}});
  entries.insert(entries.begin(), {.name = "outer", .content = inner, .deflate = false});
  entries.push_back({.name = "inner", .content = "content", .offset = 30 + 5});
  EXPECT_THAT(Complaint(BuildZip(entries)), HasSubstr("overlaps \"outer\""));
}

TEST(HostilePackage, RefusesXmlThatIsNotPlainAndSound) {
  const std::string types = MinimalEntries()[0].content;
  const std::string open =
      "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">";
  std::string deep = open;
  for (int i = 0; i < 300; ++i) deep += "<a>";
  const struct {
    const char* oddity;
    int entry;
    std::string content;
    const char* says;
  } cases[] = {
      {"empty types", 0, "", "empty"},
      {"types cut short", 0, types.substr(0, 300), "damaged at line"},
      {"types of another root", 0, "<Types/>", "does not hold \"Types\""},
      {"types with entities", 0, "<!DOCTYPE Types [<!ENTITY a \"b\">]><Types/>", "DOCTYPE"},
      {"types in another encoding", 0, "<?xml version='1.0' encoding='latin1'?>" + types.substr(39),
       "UTF-8"},
      {"types in UTF-16", 0, std::string("\xFF\xFE<\0T\0/\0>\0", 10), "UTF-8"},
      {"undeclared entity", 1,
       open + "<Relationship Id='a' Type='b' Target='&c;'/></Relationships>", "damaged"},
      {"no target", 1, open + "<Relationship Id='a' Type='b'/></Relationships>", "no \"Target\""},
      {"strange element", 1, open + "<Bond Id='a'/></Relationships>", "does not belong"},
      {"deep", 1, deep, "256 levels"},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.oddity);
    std::vector<TestEntry> entries = MinimalEntries();
    entries[static_cast<size_t>(test.entry)].content = test.content;
    EXPECT_THAT(Complaint(BuildZip(entries)), HasSubstr(test.says));
  }
}

TEST(HostilePackage, AcceptsWhatIsOddButSound) {
  const TestEntry cases[] = {
      {.name = "streamed", .descriptor = true},
      {.name = "padded", .local_extra = std::string(20, '\0')},
      {.name = "folder/", .content = "", .deflate = false},
      {.name = "zip64 beside", .local_size = 0xFFFFFFFF},
      {.name = "Übersicht", .flags = kFlagUtf8},
      {.name = "small bomb", .content = std::string(100 << 10, 'a')},
      {.name = "large", .content = Text(5'000'000)},
      {.name = "deepest.xml", .content = Repeated("<a>", 256) + Repeated("</a>", 256)},
      {.name = "markup.xml",
       .content = "<?x <a> ?><a b='/>' c=\"'>\"><![CDATA[<a>]] ><a>]]><!-- <a> -> --><b /></a >"},
      {.name = "utf16.xml", .content = Utf16("<a b='>'/>")},
      {.name = "large.xml", .content = Text(5'000'000) + "</t>"},
      {.name = "empty.xml", .content = ""},
      {.name = "picture.svg", .content = "<!DOCTYPE svg><svg/>"},
  };
  for (const TestEntry& entry : cases) {
    std::vector<TestEntry> entries = MinimalEntries();
    entries.push_back(entry);
    EXPECT_EQ(Complaint(BuildZip(entries, {.comment = "PK\5\6 comment"})), "") << entry.name;
  }
}

}  // namespace
}  // namespace kestrelon::desktop::word
