#include "desktop/outlook/store/EntryIds.h"

#include <algorithm>

#include "desktop/outlook/store/Mailbox.h"

namespace kestrelon::desktop {
namespace fs = std::filesystem;
namespace {

std::string_view PrefixOf(EntryType type) { return type == EntryType::kFolder ? "1f:" : "1i:"; }

int DigitValue(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  const char small = static_cast<char>(digit | 32);
  return small >= 'a' && small <= 'f' ? small - 'a' + 10 : -1;
}

}  // namespace

std::string ToHex(std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string digits;
  digits.reserve(bytes.size() * 2);
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    digits += kDigits[byte >> 4];
    digits += kDigits[byte & 15];
  }
  return digits;
}

std::optional<std::string> FromHex(std::string_view digits) {
  if (digits.size() % 2 != 0) return std::nullopt;
  std::string bytes;
  for (size_t i = 0; i < digits.size(); i += 2) {
    const int high = DigitValue(digits[i]), low = DigitValue(digits[i + 1]);
    if (high < 0 || low < 0) return std::nullopt;
    bytes += static_cast<char>(high * 16 + low);
  }
  return bytes;
}

std::optional<std::string> FromHex(StringView digits) { return FromHex(ToUtf8(digits)); }

String ToEntryId(EntryType type, const fs::path& relative) {
  return FromUtf8(ToHex(std::string(PrefixOf(type)) + relative.native()));
}

std::optional<fs::path> PathFromEntryId(EntryType type, StringView entry_id) {
  const std::optional<std::string> text = FromHex(entry_id);
  if (!text || !text->starts_with(PrefixOf(type))) return std::nullopt;
  const std::string path = text->substr(PrefixOf(type).size());
  size_t pieces = 0;
  for (size_t start = 0; start <= path.size(); ++pieces) {
    const size_t end = std::min(path.find('/', start), path.size());
    const std::string piece = path.substr(start, end - start);
    if (piece.empty() || piece.front() == '.' || piece.find('\0') != std::string::npos) {
      return std::nullopt;
    }
    if (pieces == 0 && piece == kSharedFolder) return std::nullopt;
    start = end + 1;
  }
  if (type == EntryType::kItem && pieces < 2) return std::nullopt;
  return path;
}

}  // namespace kestrelon::desktop
