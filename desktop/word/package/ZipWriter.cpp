#include "desktop/word/package/ZipWriter.h"

#include <libdeflate.h>

#include <algorithm>
#include <new>

#include "automation/AutomationError.h"
#include "desktop/word/package/ZipFields.h"

namespace kestrelon::desktop::word {
namespace {

constexpr int kCompressionLevel = 6;
constexpr uint16_t kVersion = 20;                 // 2.0: deflate and folders
constexpr uint16_t kFirstDay = 1 << 5 | 1;        // 1980-01-01
constexpr uint64_t kLargestArchive = 0xFFFFFFFE;  // beyond it zip64 begins

// The fields that the local header and the directory have in common, "version needed" to extra
// size.
void PutCommon(std::string& out, const ZipEntry& entry) {
  Put16(out, kVersion);
  Put16(out, entry.flags);
  Put16(out, entry.method);
  Put16(out, entry.time);
  Put16(out, entry.date);
  Put32(out, entry.crc);
  Put32(out, entry.compressed_size);
  Put32(out, entry.size);
  Put16(out, static_cast<uint32_t>(entry.name.size()));
  Put16(out, 0);
}

bool IsAscii(std::string_view text) {
  return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

}  // namespace

ZipWriter::ZipWriter(size_t expected_size) { out_.reserve(expected_size); }

ZipWriter::~ZipWriter() { libdeflate_free_compressor(compressor_); }

void ZipWriter::Copy(std::string_view archive, const ZipEntry& entry) {
  ZipEntry copy = entry;
  copy.flags &= static_cast<uint16_t>(~kFlagDescriptor);
  Append(copy, archive.substr(entry.data, entry.compressed_size));
}

void ZipWriter::Add(std::string_view name, std::string_view content) {
  if (content.size() > kLargestArchive) throw AutomationError(kOutOfMemory);
  ZipEntry entry{.name = std::string(name),
                 .flags = IsAscii(name) ? uint16_t{0} : kFlagUtf8,
                 .method = kDeflated,
                 .date = kFirstDay,
                 .crc = libdeflate_crc32(0, content.data(), content.size()),
                 .size = static_cast<uint32_t>(content.size())};
  if (compressor_ == nullptr) {
    compressor_ = libdeflate_alloc_compressor(kCompressionLevel);
    if (compressor_ == nullptr) throw std::bad_alloc();
  }
  if (scratch_.size < content.size()) {
    scratch_ = {std::make_unique_for_overwrite<char[]>(content.size()), content.size()};
  }
  // Room for one byte less than the content: what does not get smaller does not fit.
  const size_t room = content.empty() ? 0 : content.size() - 1;
  const size_t compressed = libdeflate_deflate_compress(compressor_, content.data(), content.size(),
                                                        scratch_.data.get(), room);
  if (compressed == 0 || IsSuspiciousRatio(content.size(), compressed)) entry.method = kStored;
  const std::string_view data =
      entry.method == kStored ? content : std::string_view(scratch_.data.get(), compressed);
  entry.compressed_size = static_cast<uint32_t>(data.size());
  Append(entry, data);
}

void ZipWriter::Append(const ZipEntry& entry, std::string_view data) {
  Put32(directory_, kDirectorySignature);
  Put16(directory_, kVersion);  // made by: FAT attributes, none set
  PutCommon(directory_, entry);
  directory_.append(10, '\0');  // no comment, first disk, no attributes
  Put32(directory_, static_cast<uint32_t>(std::min<uint64_t>(out_.size(), kLargestArchive)));
  directory_ += entry.name;
  Put32(out_, kLocalSignature);
  PutCommon(out_, entry);
  out_ += entry.name;
  out_ += data;
  ++count_;
}

std::string ZipWriter::Finish() && {
  if (out_.size() + directory_.size() > kLargestArchive || count_ >= 0xFFFF) {
    throw AutomationError(kOutOfMemory);
  }
  const auto offset = static_cast<uint32_t>(out_.size());
  out_ += directory_;
  Put32(out_, kEndSignature);
  Put32(out_, 0);
  Put16(out_, static_cast<uint32_t>(count_));
  Put16(out_, static_cast<uint32_t>(count_));
  Put32(out_, static_cast<uint32_t>(directory_.size()));
  Put32(out_, offset);
  Put16(out_, 0);
  return std::move(out_);
}

}  // namespace kestrelon::desktop::word
