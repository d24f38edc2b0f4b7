// Documents for tests, small enough for a line: Body(P(R("<first"), R("name>"))).
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "desktop/word/document/Document.h"
#include "tests/desktop/word/package/ZipBuilder.h"

namespace kestrelon::desktop::word {

template <typename... Parts>
std::string Join(const Parts&... parts) {
  return (std::string() + ... + parts);
}

inline std::string Element(const std::string& name, const std::string& content) {
  return "<w:" + name + ">" + content + "</w:" + name.substr(0, name.find(' ')) + ">";
}

std::string Escaped(const std::string& text);

// A run of text; `format` is what stands in its properties.
inline std::string R(const std::string& text, const std::string& format = "") {
  const std::string properties = format.empty() ? "" : Element("rPr", format);
  return Element("r", properties + "<w:t xml:space=\"preserve\">" + Escaped(text) + "</w:t>");
}
// A run of anything.
inline std::string Rx(const std::string& content) { return Element("r", content); }

template <typename... Parts>
std::string P(const Parts&... parts) {
  return Element("p", Join(parts...));
}
// A cell with one paragraph of text.
inline std::string C(const std::string& text) { return Element("tc", P(R(text))); }
template <typename... Cells>
std::string Tr(const Cells&... cells) {
  return Element("tr", Join(cells...));
}
template <typename... Rows>
std::string Tbl(const Rows&... rows) {
  return Element("tbl", Join(rows...));
}

// "begin", "separate" or "end" of a field, and its code.
inline std::string Field(const std::string& type) {
  return Rx("<w:fldChar w:fldCharType=\"" + type + "\"/>");
}
inline std::string Code(const std::string& code) { return Rx(Element("instrText", code)); }

// A picture whose text box has a modern and a fallback copy.
std::string TextBox(const std::string& modern, const std::string& fallback);

inline constexpr char kWordUri[] = "http://schemas.openxmlformats.org/wordprocessingml/2006/main";

// The main part around the blocks of a body. The end of the body has no section properties.
std::string Main(const std::string& blocks, const std::string& uri = kWordUri);

// A part beside the main one, which refers to it by `relationship` as "rIdN", N counting from 1.
struct SidePart {
  std::string name;
  std::string relationship;  // the end of the type, "/header"
  std::string content;
  std::string content_type = "application/xml";
};

// A whole package with that main part.
std::string Packed(const std::string& main, const std::vector<SidePart>& parts = {},
                   const std::string& main_type = "document");
// The document with these blocks.
std::unique_ptr<Document> Open(const std::string& blocks, const std::vector<SidePart>& parts = {});

// What stands in a part of the saved document; without the document element for the main part.
std::string PartOf(const std::string& package, const std::string& name);
std::string SavedBody(Document& document);

inline String TextOf(const Story& story) { return story.Text({0, story.Length()}); }
// Finds and replaces from the start until nothing is found, as a letter does. How many.
int ReplaceEvery(Story& story, StringView tag, StringView value);

}  // namespace kestrelon::desktop::word
