// Zips for tests, sound or with any one thing wrong.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestrelon::desktop::word {

struct TestEntry {
  std::string name = "x";
  std::string content = "y";
  bool deflate = true;
  // What the headers say instead of the truth.
  std::optional<std::string> local_name = {};
  std::optional<uint32_t> crc = {};
  std::optional<uint32_t> size = {};
  std::optional<uint32_t> local_size = {};
  std::optional<uint32_t> compressed_size = {};
  std::optional<uint32_t> offset = {};
  std::optional<uint16_t> method = {};
  uint16_t flags = 0;
  uint16_t disk = 0;
  // Checksum and sizes behind the data, as a writer that streams has them.
  bool descriptor = false;
  std::string local_extra = "";
};

struct TestEnd {
  uint16_t disk = 0;
  int count_off = 0;  // added to the true count
  std::string comment = "";
};

std::string BuildZip(const std::vector<TestEntry>& entries, const TestEnd& end = {});
std::string Deflated(const std::string& content);

// The smallest sound document: content types, package relationships, "/word/document.xml".
std::vector<TestEntry> MinimalEntries();

}  // namespace kestrelon::desktop::word
