#include "desktop/word/package/ZipReader.h"

#include <libdeflate.h>
#include <zlib.h>

#include <algorithm>
#include <new>
#include <numeric>
#include <unordered_set>

#include "desktop/word/package/PackageError.h"
#include "desktop/word/package/PartName.h"
#include "desktop/word/package/ZipFields.h"

namespace kestrelon::desktop::word {
namespace {

constexpr size_t kChunk = 64 << 10;
// Entries up to this size are verified in one piece, larger ones in chunks.
constexpr size_t kLargestScratch = 4 << 20;

constexpr std::string_view kNotFromUs = "Don't use the file unless you know where it comes from.";

[[noreturn]] void RefuseDamaged(const std::string& what) {
  RefusePackage("the file is damaged or was cut short (" + what + ")",
                "Get it again from where it came from.");
}

[[noreturn]] void RefuseEntry(const ZipEntry& entry, std::string_view has,
                              std::string_view remedy = kSaveAgain) {
  RefusePackage("its entry " + Quoted(entry.name) + " " + std::string(has), remedy);
}

// Compound files hold an encrypted package, or a document of before 2007.
void RefuseCompoundFile(std::string_view archive) {
  constexpr std::string_view kSignature = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";
  if (!archive.starts_with(kSignature)) return;
  constexpr std::string_view kStream = "EncryptedPackage";
  std::string stream_name;
  for (const char c : kStream) stream_name.append({c, '\0'});
  if (archive.find(stream_name) != std::string_view::npos) {
    RefusePackage("it is encrypted with a password",
                  "Open it in Word, remove the password and save it again.");
  }
  RefusePackage("it is a document in the format of Word 97-2003, not a .docx package",
                "Open it in Word and save it as .docx, or give the file its right ending (.doc).");
}

struct Directory {
  size_t offset = 0;
  size_t end = 0;
  size_t count = 0;
};

Directory FindDirectory(std::string_view archive) {
  RefuseCompoundFile(archive);
  if (archive.size() < kEndSize || U16(archive, 0) != (kLocalSignature & 0xFFFF)) {
    RefusePackage("it is not a .docx package (it does not begin as a zip archive does)");
  }
  // The record at the end is followed by a comment of up to 65,535 bytes that reaches the very end.
  const size_t last = archive.size() - kEndSize;
  const size_t first = last > 0xFFFF ? last - 0xFFFF : 0;
  size_t at = last + 1;
  do {
    if (at == first) RefuseDamaged("its directory is missing");
    --at;
  } while (U32(archive, at) != kEndSignature ||
           at + kEndSize + U16(archive, at + 20) != archive.size());
  const Directory found{U32(archive, at + 16), at, U16(archive, at + 10)};
  const uint32_t size = U32(archive, at + 12);
  if (found.count == 0xFFFF || size == 0xFFFFFFFF || found.offset == 0xFFFFFFFF) {
    RefusePackage("it is an archive in the zip64 form, which no document of this size needs");
  }
  if (U16(archive, at + 4) != 0 || U16(archive, at + 6) != 0 ||
      U16(archive, at + 8) != found.count) {
    RefusePackage("it is one piece of an archive that is split over several files");
  }
  if (found.count > kMostEntries) {
    RefusePackage("it has " + std::to_string(found.count) + " entries, more than the 1,000 allowed",
                  kNotFromUs);
  }
  if (uint64_t{found.offset} + size != at) RefuseDamaged("its directory is not where it should be");
  return found;
}

void CheckSizes(const ZipEntry& entry) {
  if (entry.flags & (kFlagEncrypted | kFlagStrongEncryption | kFlagMasked)) {
    RefuseEntry(entry, "is encrypted", "Save it again without a password.");
  }
  if ((entry.method != kStored && entry.method != kDeflated) || entry.flags & kFlagPatch) {
    RefuseEntry(entry, "is compressed by method " + std::to_string(entry.method) +
                           ", which documents do not use");
  }
  if (entry.compressed_size == 0xFFFFFFFF || entry.size == 0xFFFFFFFF) {
    RefuseEntry(entry, "is in the zip64 form, which no document of this size needs");
  }
  if (entry.size > kLargestPart) {
    RefuseEntry(entry, "inflates to more than 256 MiB", kNotFromUs);
  }
  if (IsSuspiciousRatio(entry.size, entry.compressed_size)) {
    RefuseEntry(entry, "inflates to more than 100 times its size", kNotFromUs);
  }
  if (entry.method == kStored && entry.size != entry.compressed_size) {
    RefuseEntry(entry, "has two different sizes");
  }
}

void CheckName(const ZipEntry& entry, std::unordered_set<std::string>& keys) {
  if (const std::string_view fault = NameFault(entry.name); !fault.empty()) {
    RefuseEntry(entry, "has " + std::string(fault), kNotFromUs);
  }
  if (!keys.insert(PartKey(entry.name)).second) RefuseEntry(entry, "is there twice", kNotFromUs);
}

// Sets where the data begins; the local header must say what the directory says.
void ReadLocalHeader(std::string_view archive, size_t directory_offset, size_t at,
                     ZipEntry& entry) {
  if (at + kLocalSize > directory_offset || U32(archive, at) != kLocalSignature) {
    RefuseDamaged("the entry " + Quoted(entry.name) + " is not where it should be");
  }
  const size_t name_size = U16(archive, at + 26);
  entry.data = at + kLocalSize + name_size + U16(archive, at + 28);
  if (entry.data + entry.compressed_size > directory_offset) {
    RefuseDamaged("the entry " + Quoted(entry.name) + " is longer than the file");
  }
  const auto differs = [](uint32_t local, uint32_t central) {
    return local != central && local != 0xFFFFFFFF;  // all ones: zip64 fields beside it
  };
  const bool later = U16(archive, at + 6) & kFlagDescriptor;
  if (archive.substr(at + kLocalSize, name_size) != entry.name ||
      U16(archive, at + 8) != entry.method ||
      ((U16(archive, at + 6) ^ entry.flags) & kFlagEncrypted) ||
      (!later && (U32(archive, at + 14) != entry.crc ||
                  differs(U32(archive, at + 18), entry.compressed_size) ||
                  differs(U32(archive, at + 22), entry.size)))) {
    RefuseEntry(entry, "is described in two different ways", kNotFromUs);
  }
}

void RefuseOverlaps(const std::vector<ZipEntry>& entries, const std::vector<size_t>& headers) {
  std::vector<size_t> order(entries.size());
  std::iota(order.begin(), order.end(), size_t{0});
  std::ranges::sort(order, {}, [&](size_t i) { return headers[i]; });
  for (size_t i = 1; i < order.size(); ++i) {
    const ZipEntry& before = entries[order[i - 1]];
    if (before.data + before.compressed_size > headers[order[i]]) {
      RefuseEntry(entries[order[i]], "overlaps " + Quoted(before.name), kNotFromUs);
    }
  }
}

}  // namespace

std::vector<ZipEntry> ReadZipDirectory(std::string_view archive) {
  const Directory directory = FindDirectory(archive);
  std::vector<ZipEntry> entries;
  std::vector<size_t> headers;
  std::unordered_set<std::string> keys;
  entries.reserve(directory.count);
  headers.reserve(directory.count);
  size_t at = directory.offset;
  for (size_t i = 0; i < directory.count; ++i) {
    if (at + kDirectorySize > directory.end || U32(archive, at) != kDirectorySignature) {
      RefuseDamaged("its directory is incomplete");
    }
    const size_t name_size = U16(archive, at + 28);
    const size_t next =
        at + kDirectorySize + name_size + U16(archive, at + 30) + U16(archive, at + 32);
    if (next > directory.end) RefuseDamaged("its directory is incomplete");
    ZipEntry entry{.name = std::string(archive.substr(at + kDirectorySize, name_size)),
                   .flags = U16(archive, at + 8),
                   .method = U16(archive, at + 10),
                   .time = U16(archive, at + 12),
                   .date = U16(archive, at + 14),
                   .crc = U32(archive, at + 16),
                   .compressed_size = U32(archive, at + 20),
                   .size = U32(archive, at + 24)};
    if (U16(archive, at + 34) != 0) RefuseEntry(entry, "lies in another file of a split archive");
    CheckName(entry, keys);
    CheckSizes(entry);
    headers.push_back(U32(archive, at + 42));
    ReadLocalHeader(archive, directory.offset, headers.back(), entry);
    entries.push_back(std::move(entry));
    at = next;
  }
  if (at != directory.end) RefuseDamaged("its directory holds more than it counts");
  RefuseOverlaps(entries, headers);
  return entries;
}

Inflater::Inflater(std::string_view archive)
    : archive_(archive), decompressor_(libdeflate_alloc_decompressor()) {
  if (decompressor_ == nullptr) throw std::bad_alloc();
}

Inflater::~Inflater() { libdeflate_free_decompressor(decompressor_); }

void Inflater::InflateInto(const ZipEntry& entry, char* target) {
  const char* source = archive_.data() + entry.data;
  if (entry.method == kStored) {
    std::copy_n(source, entry.size, target);
  } else {
    size_t consumed = 0;
    size_t produced = 0;
    const libdeflate_result result = libdeflate_deflate_decompress_ex(
        decompressor_, source, entry.compressed_size, target, entry.size, &consumed, &produced);
    if (result == LIBDEFLATE_INSUFFICIENT_SPACE) {
      RefuseEntry(entry, "inflates to more than it says", kNotFromUs);
    }
    if (result != LIBDEFLATE_SUCCESS || produced != entry.size ||
        consumed != entry.compressed_size) {
      RefuseDamaged("the entry " + Quoted(entry.name) + " does not inflate");
    }
  }
  if (libdeflate_crc32(0, target, entry.size) != entry.crc) {
    RefuseDamaged("the checksum of the entry " + Quoted(entry.name) + " is wrong");
  }
}

Buffer Inflater::Inflate(const ZipEntry& entry) {
  Buffer buffer{std::make_unique_for_overwrite<char[]>(entry.size), entry.size};
  InflateInto(entry, buffer.data.get());
  return buffer;
}

void Inflater::Verify(const ZipEntry& entry, const Reader& reader) {
  if (entry.method == kStored) {
    const std::string_view content = archive_.substr(entry.data, entry.size);
    if (libdeflate_crc32(0, content.data(), content.size()) != entry.crc) {
      RefuseDamaged("the checksum of the entry " + Quoted(entry.name) + " is wrong");
    }
    return reader(content);
  }
  const size_t needed = entry.size > kLargestScratch ? kChunk : entry.size;
  if (scratch_.size < needed) scratch_ = {std::make_unique_for_overwrite<char[]>(needed), needed};
  if (entry.size > kLargestScratch) return VerifyByChunks(entry, reader);
  InflateInto(entry, scratch_.data.get());
  reader(scratch_.view().substr(0, entry.size));
}

// libdeflate wants the whole output in one piece; for a large entry that nobody may ever read, zlib
// does with a window.
void Inflater::VerifyByChunks(const ZipEntry& entry, const Reader& reader) {
  z_stream stream{};
  if (inflateInit2(&stream, -MAX_WBITS) != Z_OK) throw std::bad_alloc();
  const std::unique_ptr<z_stream, int (*)(z_stream*)> owner(&stream, inflateEnd);
  stream.next_in =
      reinterpret_cast<Bytef*>(const_cast<char*>(archive_.data() + entry.data));  // zlib only reads
  stream.avail_in = entry.compressed_size;
  uint64_t total = 0;
  uint32_t crc = 0;
  int result = Z_OK;
  while (result == Z_OK) {
    char* const chunk = scratch_.data.get();
    stream.next_out = reinterpret_cast<Bytef*>(chunk);
    stream.avail_out = kChunk;
    result = inflate(&stream, Z_NO_FLUSH);
    const size_t produced = kChunk - stream.avail_out;
    crc = libdeflate_crc32(crc, chunk, produced);
    total += produced;
    if (total > entry.size) RefuseEntry(entry, "inflates to more than it says", kNotFromUs);
    reader({chunk, produced});
  }
  if (result != Z_STREAM_END || total != entry.size || stream.avail_in != 0) {
    RefuseDamaged("the entry " + Quoted(entry.name) + " does not inflate");
  }
  if (crc != entry.crc) {
    RefuseDamaged("the checksum of the entry " + Quoted(entry.name) + " is wrong");
  }
}

}  // namespace kestrelon::desktop::word
