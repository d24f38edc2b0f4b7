// The little-endian fields of zip records and their signatures.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kestrelon::desktop::word {

constexpr uint32_t kLocalSignature = 0x04034b50;
constexpr uint32_t kDirectorySignature = 0x02014b50;
constexpr uint32_t kEndSignature = 0x06054b50;
// Sizes of the records without their variable parts.
constexpr size_t kLocalSize = 30;
constexpr size_t kDirectorySize = 46;
constexpr size_t kEndSize = 22;

constexpr uint16_t kFlagEncrypted = 1 << 0;
constexpr uint16_t kFlagDescriptor = 1 << 3;  // crc and sizes follow the data
constexpr uint16_t kFlagPatch = 1 << 5;
constexpr uint16_t kFlagStrongEncryption = 1 << 6;
constexpr uint16_t kFlagUtf8 = 1 << 11;
constexpr uint16_t kFlagMasked = 1 << 13;

// The caller has checked that the field lies within `bytes`.
inline uint16_t U16(std::string_view bytes, size_t at) {
  const auto byte = [&](size_t i) { return static_cast<uint16_t>(static_cast<uint8_t>(bytes[i])); };
  return static_cast<uint16_t>(byte(at) | byte(at + 1) << 8);
}

inline uint32_t U32(std::string_view bytes, size_t at) {
  return U16(bytes, at) | static_cast<uint32_t>(U16(bytes, at + 2)) << 16;
}

inline void Put16(std::string& out, uint32_t value) {
  out += static_cast<char>(value & 0xFF);
  out += static_cast<char>(value >> 8 & 0xFF);
}

inline void Put32(std::string& out, uint32_t value) {
  Put16(out, value & 0xFFFF);
  Put16(out, value >> 16);
}

}  // namespace kestrelon::desktop::word
