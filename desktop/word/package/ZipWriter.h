// Writing a zip archive: entries copied with their compressed bytes, or deflated anew.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "desktop/word/package/ZipReader.h"

struct libdeflate_compressor;

namespace kestrelon::desktop::word {

class ZipWriter {
 public:
  // `expected_size` in bytes saves growing on the way.
  explicit ZipWriter(size_t expected_size);
  ~ZipWriter();

  // The entry as it lies in `archive`; sizes and checksum go into its header, in front of the data.
  void Copy(std::string_view archive, const ZipEntry& entry);
  // Deflated; stored when that is not smaller, or so small that a reader would take it for a bomb.
  // Dated 1980-01-01, so that the same content always
  // gives the same bytes.
  void Add(std::string_view name, std::string_view content);
  // Error 7 "Out of memory" when the archive has grown over the format's 4 GiB.
  std::string Finish() &&;

 private:
  void Append(const ZipEntry& entry, std::string_view data);

  std::string out_;
  std::string directory_;
  size_t count_ = 0;
  libdeflate_compressor* compressor_ = nullptr;
  Buffer scratch_;
};

}  // namespace kestrelon::desktop::word
