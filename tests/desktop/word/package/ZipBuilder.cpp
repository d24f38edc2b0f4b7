#include "tests/desktop/word/package/ZipBuilder.h"

#include <libdeflate.h>

#include <memory>

#include "desktop/word/package/ZipFields.h"

namespace kestrelon::desktop::word {

std::string Deflated(const std::string& content) {
  const std::unique_ptr<libdeflate_compressor, void (*)(libdeflate_compressor*)> compressor(
      libdeflate_alloc_compressor(6), libdeflate_free_compressor);
  std::string out(libdeflate_deflate_compress_bound(compressor.get(), content.size()), '\0');
  out.resize(libdeflate_deflate_compress(compressor.get(), content.data(), content.size(),
                                         out.data(), out.size()));
  return out;
}

std::string BuildZip(const std::vector<TestEntry>& entries, const TestEnd& end) {
  std::string out;
  std::string directory;
  for (const TestEntry& entry : entries) {
    const std::string data = entry.deflate ? Deflated(entry.content) : entry.content;
    const uint32_t crc =
        entry.crc.value_or(libdeflate_crc32(0, entry.content.data(), entry.content.size()));
    const uint32_t size = entry.size.value_or(static_cast<uint32_t>(entry.content.size()));
    const uint32_t compressed = entry.compressed_size.value_or(static_cast<uint32_t>(data.size()));
    const uint16_t flags = entry.flags | (entry.descriptor ? kFlagDescriptor : 0);
    const auto common = [&](std::string& to, bool with_sizes, uint32_t stated_size) {
      Put16(to, 20);
      Put16(to, flags);
      Put16(to, entry.method.value_or(entry.deflate ? 8 : 0));
      Put32(to, 0x4A21A83Du);  // some day in 2017
      for (const uint32_t field : {crc, compressed, stated_size}) Put32(to, with_sizes ? field : 0);
    };
    const auto offset = static_cast<uint32_t>(out.size());
    const std::string local_name = entry.local_name.value_or(entry.name);
    Put32(out, kLocalSignature);
    common(out, !entry.descriptor, entry.local_size.value_or(size));
    Put16(out, static_cast<uint32_t>(local_name.size()));
    Put16(out, static_cast<uint32_t>(entry.local_extra.size()));
    out += local_name + entry.local_extra + data;
    if (entry.descriptor) {
      for (const uint32_t field : {0x08074b50u, crc, compressed, size}) Put32(out, field);
    }
    Put32(directory, kDirectorySignature);
    Put16(directory, 20);
    common(directory, true, size);
    Put16(directory, static_cast<uint32_t>(entry.name.size()));
    Put32(directory, 0);
    Put16(directory, entry.disk);
    directory.append(6, '\0');
    Put32(directory, entry.offset.value_or(offset));
    directory += entry.name;
  }
  const auto directory_offset = static_cast<uint32_t>(out.size());
  const auto count = static_cast<uint32_t>(static_cast<int>(entries.size()) + end.count_off);
  out += directory;
  Put32(out, kEndSignature);
  Put16(out, end.disk);
  Put16(out, end.disk);
  Put16(out, count);
  Put16(out, count);
  Put32(out, static_cast<uint32_t>(directory.size()));
  Put32(out, directory_offset);
  Put16(out, static_cast<uint32_t>(end.comment.size()));
  return out + end.comment;
}

std::vector<TestEntry> MinimalEntries() {
  return {
      {"[Content_Types].xml",
       "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
       "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">\n"
       "  <Default Extension='RELS' ContentType='application/"
       "vnd.openxmlformats-package.relationships+xml' />\n"
       "  <Default Extension=\"xml\" ContentType=\"application/xml\"/>\n"
       "  <Override PartName=\"/Word/Document.xml\" ContentType=\"application/x.template+xml\"/>\n"
       "</Types>"},
      {"_rels/.rels",
       "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
       "<Relationship Id=\"rId1\" Type=\"http://purl.oclc.org/ooxml/officeDocument\" "
       "Target=\"word/document.xml\"/></Relationships>"},
      {"word/document.xml", "<document>Dear &lt;firstname&gt;,</document>"},
  };
}

}  // namespace kestrelon::desktop::word
