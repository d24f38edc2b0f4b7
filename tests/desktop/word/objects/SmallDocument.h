// Compact builders of small real documents for tests.
#pragma once

#include <zlib.h>

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace kestrelon::desktop::word {

// A zip of stored entries.
inline std::string StoredZip(const std::vector<std::pair<std::string, std::string>>& entries) {
  const auto little = [](uint32_t number, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i) text += static_cast<char>(number >> (8 * i));
    return text;
  };
  std::string zip;
  std::string directory;
  for (const auto& [name, content] : entries) {
    const auto size = static_cast<uint32_t>(content.size());
    const auto crc = static_cast<uint32_t>(
        crc32(0, reinterpret_cast<const Bytef*>(content.data()), static_cast<uInt>(size)));
    const std::string common = little(20, 2) + little(0, 2) + little(0, 2) + little(0, 2) +
                               little(0x21, 2) + little(crc, 4) + little(size, 4) +
                               little(size, 4) + little(static_cast<uint32_t>(name.size()), 2) +
                               little(0, 2);
    const auto offset = static_cast<uint32_t>(zip.size());
    zip += "PK\x03\x04" + common + name + content;
    directory += "PK\x01\x02" + little(20, 2) + common + little(0, 2) + little(0, 2) +
                 little(0, 2) + little(0, 4) + little(offset, 4) + name;
  }
  const auto count = static_cast<uint32_t>(entries.size());
  return zip + directory + "PK\x05\x06" + little(0, 4) + little(count, 2) + little(count, 2) +
         little(static_cast<uint32_t>(directory.size()), 4) +
         little(static_cast<uint32_t>(zip.size()), 4) + little(0, 2);
}

inline std::string Run(const std::string& text) {
  return "<w:r><w:t xml:space=\"preserve\">" + text + "</w:t></w:r>";
}

// A paragraph; each piece is a run of its own.
inline std::string Paragraph(std::initializer_list<std::string> pieces) {
  std::string xml = "<w:p>";
  for (const std::string& piece : pieces) xml += Run(piece);
  return xml + "</w:p>";
}

inline std::string TableOf(std::initializer_list<std::initializer_list<std::string>> rows) {
  std::string xml = "<w:tbl><w:tblPr/><w:tblGrid>";
  for (size_t i = 0; i < rows.begin()->size(); ++i) xml += "<w:gridCol/>";
  xml += "</w:tblGrid>";
  for (const auto& row : rows) {
    xml += "<w:tr>";
    for (const std::string& cell : row) xml += "<w:tc><w:tcPr/>" + Paragraph({cell}) + "</w:tc>";
    xml += "</w:tr>";
  }
  return xml + "</w:tbl>";
}

inline std::string TextBox(const std::string& text) {
  return "<w:p><w:r><w:pict><v:shape id=\"box\"><v:textbox><w:txbxContent>" + Paragraph({text}) +
         "</w:txbxContent></v:textbox></v:shape></w:pict></w:r></w:p>";
}

// A document with this body and, when it is not "", this primary header. Text is XML:
// "&lt;tag&gt;".
inline std::string DocumentOf(const std::string& body, const std::string& header = "") {
  const std::string namespaces =
      " xmlns:w=\"http://schemas.openxmlformats.org/wordprocessingml/2006/main\""
      " xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\""
      " xmlns:v=\"urn:schemas-microsoft-com:vml\">";
  const std::string relationships =
      "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">";
  const std::string type =
      "\" Type=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships/";
  const std::string content = "application/vnd.openxmlformats-officedocument.wordprocessingml.";
  std::vector<std::pair<std::string, std::string>> parts;
  parts.emplace_back(
      "[Content_Types].xml",
      "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
      "<Default Extension=\"rels\" "
      "ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>"
      "<Override PartName=\"/word/document.xml\" ContentType=\"" +
          content + "document.main+xml\"/><Override PartName=\"/word/header1.xml\" ContentType=\"" +
          content + "header+xml\"/></Types>");
  parts.emplace_back("_rels/.rels", relationships + "<Relationship Id=\"rId1" + type +
                                        "officeDocument\" Target=\"word/document.xml\"/>"
                                        "</Relationships>");
  const std::string reference =
      header.empty() ? "" : "<w:headerReference w:type=\"default\" r:id=\"rId1\"/>";
  parts.emplace_back("word/document.xml", "<w:document" + namespaces + "<w:body>" + body +
                                              "<w:sectPr>" + reference +
                                              "</w:sectPr></w:body></w:document>");
  if (!header.empty()) {
    parts.emplace_back("word/_rels/document.xml.rels",
                       relationships + "<Relationship Id=\"rId1" + type +
                           "header\" Target=\"header1.xml\"/></Relationships>");
    parts.emplace_back("word/header1.xml", "<w:hdr" + namespaces + header + "</w:hdr>");
  }
  return StoredZip(parts);
}

}  // namespace kestrelon::desktop::word
