#include <array>
#include <cstring>
#include <string_view>

#include "platform/TempFileNames.h"
#include "platform/windows/SystemTexts.h"
#include "platform/windows/WindowsPlatform.h"

namespace kestrelon {
namespace {

String TempPath() {
  const DWORD size = GetTempPathW(0, nullptr);
  std::wstring path(size, L'\0');
  const DWORD length = GetTempPathW(size, path.data());
  return length < size ? FromWide({path.data(), length}) : String();
}

}  // namespace

uint32_t WindowsPlatform::GetTempPathAnsi(uint32_t size, char* buffer) {
  const std::string path = AnsiPath(TempPath());
  const auto length = static_cast<uint32_t>(path.size());
  if (length == 0) return 0;
  if (length >= size) return length + 1;
  std::memcpy(buffer, path.c_str(), path.size() + 1);
  return length;
}

uint32_t WindowsPlatform::GetTempFileNameAnsi(const char* folder, const char* prefix,
                                              uint32_t unique, char* buffer) {
  const std::string_view lead(prefix, strnlen(prefix, kTempPrefixLength));
  if (*folder == '\0' || !IsFileName(lead)) return 0;
  std::array<wchar_t, kAnsiPathSize> name{};
  const UINT number =
      GetTempFileNameW(AsWide(FromAnsi(folder)), AsWide(FromAnsi(lead)), unique, name.data());
  if (number == 0) return 0;
  const std::string path = NearestAnsi(FromWide(name.data()));
  std::memcpy(buffer, path.c_str(), path.size() + 1);
  return number;
}

}  // namespace kestrelon
