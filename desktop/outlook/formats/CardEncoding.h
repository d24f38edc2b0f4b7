// The encodings of vCard files and of the values in them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kestrelon::desktop {

// A file's text in UTF-8, with what it takes to write it as it was.
struct FileText {
  enum class Encoding : uint8_t { kUtf8, kUtf16Little, kUtf16Big };
  Encoding encoding = Encoding::kUtf8;
  std::string text;      // of UTF-16 without the mark; of UTF-8, the file's bytes
  std::string tail;      // an odd last byte of UTF-16
  bool returns = false;  // its lines end in CR alone; those of `text` in LF
  bool IsAsItStands() const { return encoding == Encoding::kUtf8 && !returns; }
};

FileText DecodeFile(std::string content);
std::string EncodeFile(const FileText& file, std::string_view text);

bool IsAscii(std::string_view bytes);
bool IsUtf8(std::string_view bytes);
// UTF-8 of `bytes` in `charset`. Without a charset, what is not UTF-8 is Windows-1252; so is what
// is in a charset that is unknown or that the bytes do not keep to.
std::string DecodeCharset(std::string_view bytes, std::string_view charset);

// Without soft line breaks.
std::string DecodeQuotedPrintable(std::string_view text);
std::string EncodeQuotedPrintable(std::string_view bytes);
std::string DecodeBase64(std::string_view text);

}  // namespace kestrelon::desktop
