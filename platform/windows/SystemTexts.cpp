#include "platform/windows/SystemTexts.h"

#include <algorithm>

namespace kestrelon {
namespace {

constexpr UINT kControlCodePage = 1252;

// "" when the text cannot be converted.
std::string InCodePage(UINT code_page, StringView text) {
  const String source(text);
  const auto length = static_cast<int>(source.size());
  const int size =
      WideCharToMultiByte(code_page, 0, AsWide(source), length, nullptr, 0, nullptr, nullptr);
  std::string bytes(static_cast<size_t>(std::max(size, 0)), '\0');
  WideCharToMultiByte(code_page, 0, AsWide(source), length, bytes.data(), size, nullptr, nullptr);
  return bytes;
}

String FromCodePage(UINT code_page, const std::string& bytes) {
  const auto length = static_cast<int>(bytes.size());
  const int size = MultiByteToWideChar(code_page, 0, bytes.data(), length, nullptr, 0);
  std::wstring text(static_cast<size_t>(std::max(size, 0)), L'\0');
  MultiByteToWideChar(code_page, 0, bytes.data(), length, text.data(), size);
  return FromWide(text);
}

// Not the question whether a default character was needed: UTF-8 as a code page does not answer it,
// and a nearest character is no default.
bool IsExact(UINT code_page, StringView text, const std::string& bytes) {
  return FromCodePage(code_page, bytes) == text;
}

// `path` itself when it has no short name.
String ShortPath(const String& path) {
  const DWORD size = GetShortPathNameW(AsWide(path), nullptr, 0);
  std::wstring name(size, L'\0');
  const DWORD length = GetShortPathNameW(AsWide(path), name.data(), size);
  if (length == 0 || length >= size) return path;
  return FromWide({name.data(), length});
}

}  // namespace

std::string NearestAnsi(StringView text) { return InCodePage(kControlCodePage, text); }

std::string AnsiPath(const String& path) {
  std::string bytes = NearestAnsi(path);
  return IsExact(kControlCodePage, path, bytes) ? bytes : NearestAnsi(ShortPath(path));
}

std::optional<std::vector<std::string>> InSystemCodePage(std::initializer_list<StringView> texts) {
  std::vector<std::string> converted;
  for (const StringView text : texts) {
    converted.push_back(InCodePage(CP_ACP, text));
    if (!IsExact(CP_ACP, text, converted.back())) return std::nullopt;
  }
  return converted;
}

}  // namespace kestrelon
