#include <gmock/gmock.h>

#include <algorithm>

#include "desktop/word/package/Package.h"
#include "desktop/word/package/ZipReader.h"
#include "tests/desktop/word/package/ZipBuilder.h"
#include "tests/support/Failures.h"

namespace kestrelon::desktop::word {
namespace {

using testing::ElementsAre;

constexpr char kOpen[] =
    "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">";

std::unique_ptr<Package> OpenEntries(const std::vector<TestEntry>& entries) {
  return Package::Open(BuildZip(entries));
}

// The relationship part of "/word/document.xml" with these relationships.
TestEntry DocumentRelationships(const std::string& relationships) {
  return {"word/_rels/document.xml.rels", kOpen + relationships + "</Relationships>"};
}

struct Raw {
  std::string name;
  std::string compressed;
  friend bool operator==(const Raw&, const Raw&) = default;
};

std::vector<Raw> RawEntries(const std::string& zip) {
  std::vector<Raw> raw;
  for (const ZipEntry& entry : ReadZipDirectory(zip)) {
    raw.push_back({entry.name, zip.substr(entry.data, entry.compressed_size)});
  }
  return raw;
}

std::string EntryText(const std::string& zip, std::string_view name) {
  for (const ZipEntry& entry : ReadZipDirectory(zip)) {
    if (entry.name == name) return std::string(Inflater(zip).Inflate(entry).view());
  }
  return "missing";
}

TEST(Package, KeepsTheCompressedBytesOfWhatNobodyTouches) {
  std::vector<TestEntry> entries = MinimalEntries();
  std::swap(entries[0], entries[2]);
  entries.push_back({.name = "folder/", .content = "", .deflate = false});
  entries.push_back({.name = "picture.png", .content = "\x89PNG", .deflate = false});
  entries.push_back({.name = "streamed", .content = "text text text", .descriptor = true});
  const std::string zip = BuildZip(entries, {.comment = "made by hand"});
  const auto package = Package::Open(zip);
  package->Content("/streamed");
  const std::string untouched = package->Write();
  std::vector<Raw> expected = RawEntries(zip);
  std::rotate(expected.begin(), expected.begin() + 2, expected.begin() + 3);
  EXPECT_EQ(RawEntries(untouched), expected) << "content types first, the others in their order";

  package->Replace("/WORD/document.xml", "<document/>");
  package->Add("/word/new.xml", "application/xml", "<new/>");
  const std::string changed = package->Write();
  EXPECT_EQ(EntryText(changed, "word/document.xml"), "<document/>");
  expected = RawEntries(changed);
  const std::vector<Raw> before = RawEntries(untouched);
  ASSERT_EQ(expected.size(), before.size() + 1);
  EXPECT_EQ(expected.back().name, "word/new.xml");
  for (size_t i = 0; i < before.size(); ++i) {
    EXPECT_EQ(expected[i] == before[i], before[i].name != "word/document.xml") << before[i].name;
  }
  EXPECT_EQ(Package::Open(changed)->Write(), changed);
}

TEST(Package, KeepsContentAvailableUntilItIsReplaced) {
  const auto package = OpenEntries(MinimalEntries());
  const std::string_view content = package->Content("/word/document.xml");
  for (int i = 0; i < 100; ++i) package->Add("/p" + std::to_string(i), "a/b", std::to_string(i));
  EXPECT_EQ(content, "<document>Dear &lt;firstname&gt;,</document>");
  const std::string_view small = package->Content("/p7");
  package->Remove("/p6");
  EXPECT_EQ(small, "7");
  package->Replace("/p7", std::string(300'000, 'x'));
  const auto reopened = Package::Open(package->Write());
  EXPECT_EQ(reopened->Content("/p42"), "42");
  EXPECT_EQ(reopened->Content("/p7").size(), 300'000u) << "what we write is no bomb to ourselves";
}

TEST(Package, FindsContentTypesByNameThenByExtension) {
  std::vector<TestEntry> entries = MinimalEntries();
  entries.push_back({"word/styles.XML", "<styles/>"});
  entries.push_back({"word.xml/none", ""});
  const auto package = OpenEntries(entries);
  EXPECT_EQ(package->ContentType("/word/document.xml"), "application/x.template+xml");
  EXPECT_EQ(package->ContentType("/word/styles.XML"), "application/xml");
  EXPECT_EQ(package->ContentType("/word.xml/none"), "");
  EXPECT_THAT(package->PartNames(),
              ElementsAre("/word/document.xml", "/word/styles.XML", "/word.xml/none"));

  package->SetContentType("/word/styles.XML", "application/xml");
  package->SetContentType("/word/document.xml", "a/<&\"b");
  std::string expected = entries[0].content;
  const std::string old = "ContentType=\"application/x.template+xml\"";
  expected.replace(expected.find(old), old.size(), "ContentType=\"a/&lt;&amp;&quot;b\"");
  const std::string written = package->Write();
  EXPECT_EQ(EntryText(written, "[Content_Types].xml"), expected) << "only the one type differs";
  EXPECT_EQ(Package::Open(written)->ContentType("/word/document.xml"), "a/<&\"b");
}

TEST(Package, ResolvesTargetsAgainstThePart) {
  const std::pair<const char*, const char*> cases[] = {
      {"header1.xml", "/word/header1.xml"},
      {"/word/header1.xml", "/word/header1.xml"},
      {"../word/./header1.xml", "/word/header1.xml"},
      {"../../../word/header1.xml", "/word/header1.xml"},
      {"HEADER1.xml", "/word/header1.xml"},
      {"media/my%20logo.png", "/word/media/my logo.png"},
      {"a&amp;b.xml", "/word/a&b.xml"},
      {"#bookmark", "/word/document.xml"},
      {"missing.xml", "/word/missing.xml"},
      {"\" TargetMode=\"External", ""},
      {"http://example.com/?a=1&amp;b=2\" TargetMode=\"External", "http://example.com/?a=1&b=2"},
  };
  std::string text;
  for (const auto& one : cases) {
    text += "\n<Relationship Id=\"i\" Type=\"t\" Target=\"" + std::string(one.first) + "\"/>";
  }
  std::vector<TestEntry> entries = MinimalEntries();
  entries.push_back(DocumentRelationships(text));
  entries.push_back({"word/header1.xml", "<hdr/>"});
  entries.push_back({"word/media/my logo.png", "png"});
  const auto package = OpenEntries(entries);
  const std::vector<Relationship>& found = package->Relationships("/word/document.xml");
  ASSERT_EQ(found.size(), std::size(cases));
  for (size_t i = 0; i < found.size(); ++i) {
    EXPECT_EQ(found[i].target, cases[i].second) << cases[i].first;
    EXPECT_EQ(found[i].external, std::string(cases[i].first).find("External") != std::string::npos);
  }
  EXPECT_EQ(package->RelatedPart("", "/officeDocument"), "/word/document.xml");
  EXPECT_EQ(package->RelatedPart("", "/header"), "");
  EXPECT_TRUE(package->Relationships("/word/header1.xml").empty());
}

TEST(Package, AddsRelationshipsBesideTheOthers) {
  // Long enough for the parser to drop what it has read; prefixed, with an odd id and odd spacing.
  std::string text = "\xEF\xBB\xBF<r:Relationships xmlns:r=\"" + std::string(kOpen).substr(22, 60) +
                     "\" ><!-- <Relationship/> -->";
  for (int i = 1; i <= 200; ++i) {
    text += "\n <r:Relationship Target='p" + std::to_string(i) + ".xml'  Id='rId" +
            std::to_string(i) + "' Type='t/part' ></r:Relationship >";
  }
  const std::string start = text;
  text += "\n <r:Relationship Id='rId99999999999' Type='t' Target='x'/>\n</r:Relationships>\n";
  std::vector<TestEntry> entries = MinimalEntries();
  entries.push_back({"word/_rels/document.xml.rels", text});
  const auto package = OpenEntries(entries);
  EXPECT_EQ(package->AddRelationship("/word/document.xml", "t/a", "/word/a.xml"), "rId201");
  EXPECT_EQ(package->AddRelationship("/word/document.xml", "t/b", "/b.xml"), "rId202");
  EXPECT_EQ(package->AddRelationship("/word/document.xml", "t/c", "http://c/", true), "rId203");
  EXPECT_EQ(EntryText(package->Write(), "word/_rels/document.xml.rels"),
            start +
                "\n <r:Relationship Id='rId99999999999' Type='t' Target='x'/>\n"
                "<r:Relationship Id=\"rId201\" Type=\"t/a\" Target=\"a.xml\"/>"
                "<r:Relationship Id=\"rId202\" Type=\"t/b\" Target=\"/b.xml\"/>"
                "<r:Relationship Id=\"rId203\" Type=\"t/c\" Target=\"http://c/\" "
                "TargetMode=\"External\"/></r:Relationships>\n");
  EXPECT_EQ(package->RelatedPart("/word/document.xml", "/b"), "/b.xml");
}

TEST(Package, GivesAPartItsFirstRelationships) {
  std::vector<TestEntry> entries = MinimalEntries();
  entries[0].content =
      "<x:Types xmlns:x=\"http://schemas.openxmlformats.org/package/2006/content-types\"/>";
  const auto package = OpenEntries(entries);
  EXPECT_EQ(package->AddRelationship("/word/document.xml", "t", "/word/a.xml"), "rId1");
  const std::string written = package->Write();
  EXPECT_EQ(EntryText(written, "[Content_Types].xml"),
            "<x:Types xmlns:x=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
            "<x:Default Extension=\"rels\" ContentType=\"application/"
            "vnd.openxmlformats-package.relationships+xml\"/></x:Types>");
  EXPECT_EQ(Package::Open(written)->RelatedPart("/word/document.xml", "t"), "/word/a.xml");
}

TEST(Package, RemovesAPartWithEverythingThatLeadsToIt) {
  std::vector<TestEntry> entries = MinimalEntries();
  entries.push_back(
      DocumentRelationships("<Relationship Id=\"a\" Type=\"t\" Target=\"gone.xml\"/>"
                            "<Relationship Id=\"b\" Type=\"t\" Target=\"kept.xml\"/>"
                            "<Relationship Id=\"c\" Type=\"t\" Target=\"GONE.xml\"/>"));
  entries.push_back({"word/gone.xml", "<gone/>"});
  entries.push_back({"word/_rels/gone.xml.rels", std::string(kOpen) + "</Relationships>"});
  entries.push_back({"word/kept.xml", "<kept/>"});
  const auto package = OpenEntries(entries);
  package->SetContentType("/word/gone.xml", "a/gone");
  package->Remove("/Word/Gone.xml");
  package->Remove("/word/gone.xml");
  const std::string written = package->Write();
  EXPECT_THAT(Package::Open(written)->PartNames(),
              ElementsAre("/word/document.xml", "/word/kept.xml"));
  EXPECT_EQ(EntryText(written, "word/_rels/gone.xml.rels"), "missing");
  EXPECT_EQ(EntryText(written, "[Content_Types].xml"), entries[0].content);
  EXPECT_EQ(EntryText(written, "word/_rels/document.xml.rels"),
            std::string(kOpen) + "<Relationship Id=\"b\" Type=\"t\" Target=\"kept.xml\"/>" +
                "</Relationships>");
}

TEST(Package, RefusesChangesToWhatIsNotThere) {
  const auto package = OpenEntries(MinimalEntries());
  EXPECT_EQ(NumberOf([&] { package->Content("/word/none.xml"); }), kCorruptDocument);
  EXPECT_EQ(NumberOf([&] { package->Content("/_rels/.rels"); }), kCorruptDocument);
  EXPECT_EQ(NumberOf([&] { package->Replace("/none", ""); }), kCorruptDocument);
  for (const char* name : {"x", "/word/document.xml", "/../x", "/folder/", "/_rels/x.rels"}) {
    EXPECT_EQ(NumberOf([&] { package->Add(name, "a/b", ""); }), kInvalidProcedureCall) << name;
  }
  EXPECT_EQ(NumberOf([&] { package->AddRelationship("/none", "t", "/x"); }), kInvalidProcedureCall);
  EXPECT_EQ(package->Write(), OpenEntries(MinimalEntries())->Write());
}

}  // namespace
}  // namespace kestrelon::desktop::word
