// Reading the zip archive of a package without trusting it.
//
// The directory is checked as a whole before any content is looked at: one disk, nothing encrypted,
// nothing overlapping, names inside the package and each only once, what the local headers say
// equal to what the directory says. Sizes that the directory states are held against the limits at
// once, and every inflation is bounded by them and must fill them exactly, so the limits hold for
// the actual bytes. All refusals are kCorruptDocument.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct libdeflate_decompressor;

namespace kestrelon::desktop::word {

constexpr size_t kMostEntries = 1000;
constexpr uint64_t kLargestPart = uint64_t{256} << 20;
// Above 100 KiB an entry may inflate to 100 times its size.
constexpr bool IsSuspiciousRatio(uint64_t size, uint64_t compressed_size) {
  return size > (100 << 10) && size > 100 * compressed_size;
}

enum ZipMethod : uint16_t { kStored = 0, kDeflated = 8 };

struct ZipEntry {
  std::string name;  // as the archive has it, without a leading "/"
  uint16_t flags = 0;
  uint16_t method = kStored;
  uint16_t time = 0;
  uint16_t date = 0;
  uint32_t crc = 0;
  uint32_t compressed_size = 0;
  uint32_t size = 0;
  size_t data = 0;  // where the compressed bytes begin in the archive

  bool is_folder() const { return name.ends_with('/'); }
};

// The entries in the order of the directory.
std::vector<ZipEntry> ReadZipDirectory(std::string_view archive);

// Bytes that are not cleared before they are filled.
struct Buffer {
  std::unique_ptr<char[]> data;
  size_t size = 0;

  std::string_view view() const { return {data.get(), size}; }
};

// Inflates entries of one archive, which must outlive it.
class Inflater {
 public:
  explicit Inflater(std::string_view archive);
  ~Inflater();

  Buffer Inflate(const ZipEntry& entry);
  // Inflates the entry only to see that it is sound, in little memory whatever its size. Its
  // content is shown to `reader` piece by piece.
  using Reader = std::function<void(std::string_view piece)>;
  void Verify(const ZipEntry& entry, const Reader& reader);

 private:
  void InflateInto(const ZipEntry& entry, char* target);
  void VerifyByChunks(const ZipEntry& entry, const Reader& reader);

  std::string_view archive_;
  libdeflate_decompressor* decompressor_;
  Buffer scratch_;
};

}  // namespace kestrelon::desktop::word
