#include "benchmarks/Floor.h"

#include <zlib.h>

#include <cstdint>
#include <cstring>
#include <stdexcept>

namespace kestrelon::benchmarks {
namespace {

constexpr int kRawDeflate = -15;
constexpr int kLevel = 6;

uint32_t Field(const std::string& bytes, size_t at, int size) {
  uint32_t value = 0;
  for (int i = 0; i < size; ++i) {
    value |= static_cast<uint32_t>(static_cast<unsigned char>(bytes.at(at + i))) << (8 * i);
  }
  return value;
}

std::string Inflate(const char* data, size_t size, size_t inflated_size) {
  std::string out(inflated_size, '\0');
  z_stream stream{};
  inflateInit2(&stream, kRawDeflate);
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data));
  stream.avail_in = static_cast<uInt>(size);
  stream.next_out = reinterpret_cast<Bytef*>(out.data());
  stream.avail_out = static_cast<uInt>(out.size());
  const int result = inflate(&stream, Z_FINISH);
  inflateEnd(&stream);
  if (result != Z_STREAM_END) throw std::runtime_error("the template cannot be inflated");
  return out;
}

size_t DeflatedSize(const std::string& content) {
  z_stream stream{};
  deflateInit2(&stream, kLevel, Z_DEFLATED, kRawDeflate, 8, Z_DEFAULT_STRATEGY);
  std::string out(deflateBound(&stream, content.size()), '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(content.data()));
  stream.avail_in = static_cast<uInt>(content.size());
  stream.next_out = reinterpret_cast<Bytef*>(out.data());
  stream.avail_out = static_cast<uInt>(out.size());
  deflate(&stream, Z_FINISH);
  const size_t size = stream.total_out;
  deflateEnd(&stream);
  return size;
}

}  // namespace

size_t RunFloor(const std::string& package) {
  const size_t end = package.rfind("PK\x05\x06");
  if (end == std::string::npos) throw std::runtime_error("the template is no zip");
  const uint32_t entries = Field(package, end + 10, 2);
  size_t at = Field(package, end + 16, 4);
  size_t total = 0;
  for (uint32_t i = 0; i < entries; ++i) {
    const uint32_t method = Field(package, at + 10, 2);
    const uint32_t compressed = Field(package, at + 20, 4);
    const uint32_t inflated = Field(package, at + 24, 4);
    const size_t local = Field(package, at + 42, 4);
    const size_t data = local + 30 + Field(package, local + 26, 2) + Field(package, local + 28, 2);
    const std::string content = method == 0 ? package.substr(data, compressed)
                                            : Inflate(package.data() + data, compressed, inflated);
    total += DeflatedSize(content);
    at += 46 + Field(package, at + 28, 2) + Field(package, at + 30, 2) + Field(package, at + 32, 2);
  }
  return total;
}

}  // namespace kestrelon::benchmarks
