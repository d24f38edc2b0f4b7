#include "tests/desktop/word/document/Builders.h"

#include "desktop/word/package/Package.h"

namespace kestrelon::desktop::word {
namespace {

constexpr char kRelationshipType[] =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships";

std::string Relationships(const std::string& list) {
  return "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">" +
         list + "</Relationships>";
}

std::string RelationshipTo(size_t id, const std::string& type, const std::string& target) {
  return "<Relationship Id=\"rId" + std::to_string(id) + "\" Type=\"" + kRelationshipType + type +
         "\" Target=\"" + target + "\"/>";
}

}  // namespace

std::string Escaped(const std::string& text) {
  std::string escaped;
  for (const char c : text) escaped += c == '<' ? "&lt;" : c == '&' ? "&amp;" : std::string(1, c);
  return escaped;
}

std::string TextBox(const std::string& modern, const std::string& fallback) {
  return Rx("<mc:AlternateContent><mc:Choice Requires=\"wps\"><w:drawing><wps:txbx>" +
            Element("txbxContent", modern) +
            "</wps:txbx></w:drawing></mc:Choice><mc:Fallback><w:pict>" +
            Element("txbxContent", fallback) + "</w:pict></mc:Fallback></mc:AlternateContent>");
}

std::string Main(const std::string& blocks, const std::string& uri) {
  return "<w:document xmlns:w=\"" + uri +
         "\" xmlns:mc=\"http://schemas.openxmlformats.org/markup-compatibility/2006\""
         " xmlns:w14=\"http://schemas.microsoft.com/office/word/2010/wordml\""
         " xmlns:wps=\"urn:wps\" xmlns:r=\"urn:r\"><w:body>" +
         blocks + "</w:body></w:document>";
}

std::string Packed(const std::string& main, const std::vector<SidePart>& parts,
                   const std::string& main_type) {
  std::string types =
      "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
      "<Default Extension=\"xml\" ContentType=\"application/xml\"/>"
      "<Default Extension=\"rels\" "
      "ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>"
      "<Override PartName=\"/letter/main.xml\" ContentType=\"" +
      (main_type.starts_with("application/")
           ? main_type
           : "application/vnd.openxmlformats-officedocument.wordprocessingml." + main_type +
                 ".main+xml") +
      "\"/>";
  std::string related;
  std::vector<TestEntry> entries;
  for (size_t i = 0; i < parts.size(); ++i) {
    types += "<Override PartName=\"" + parts[i].name + "\" ContentType=\"" + parts[i].content_type +
             "\"/>";
    related += RelationshipTo(i + 1, parts[i].relationship, parts[i].name);
    entries.push_back({parts[i].name.substr(1), parts[i].content});
  }
  entries.insert(
      entries.begin(),
      {{"[Content_Types].xml", types + "</Types>"},
       {"_rels/.rels", Relationships(RelationshipTo(1, "/officeDocument", "letter/main.xml"))},
       {"letter/_rels/main.xml.rels", Relationships(related)},
       {"letter/main.xml", main}});
  return BuildZip(entries);
}

std::unique_ptr<Document> Open(const std::string& blocks, const std::vector<SidePart>& parts) {
  return Document::Open(Packed(Main(blocks), parts));
}

std::string PartOf(const std::string& package, const std::string& name) {
  return std::string(Package::Open(package)->Content(name));
}

std::string SavedBody(Document& document) {
  const std::string main = PartOf(document.Save(DocumentKind::kDocx), "/letter/main.xml");
  const size_t begin = main.find("<w:body>") + 8;
  return main.substr(begin, main.find("</w:body>") - begin);
}

int ReplaceEvery(Story& story, StringView tag, StringView value) {
  const FindPattern pattern(tag, false);
  int count = 0;
  while (const auto match = story.Find(pattern, 0, story.Length())) {
    story.Replace(*match, value);
    ++count;
  }
  return count;
}

}  // namespace kestrelon::desktop::word
