#include "desktop/http/BodyText.h"

#include <unicode/ucnv.h>

#include <array>
#include <limits>
#include <memory>
#include <string>

namespace kestrelon::desktop {
namespace {

struct CloseConverter {
  void operator()(UConverter* converter) const { ucnv_close(converter); }
};

// "windows-1252" of "text/html; charset=\"windows-1252\"", in lower case; "" without one.
std::string CharsetOf(std::string_view content_type) {
  constexpr std::string_view kParameter = "charset=";
  const std::string type = ToUtf8(LowerCase(FromUtf8(content_type)));
  const size_t at = type.find(kParameter);
  if (at == std::string::npos) return {};
  std::string charset = type.substr(at + kParameter.size());
  charset = charset.substr(0, charset.find(';'));
  std::erase_if(charset, [](char c) { return c == '"' || c == '\'' || c == ' '; });
  return charset;
}

String Convert(std::string_view bytes, const std::string& charset) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<UConverter, CloseConverter> converter(ucnv_open(charset.c_str(), &status));
  if (U_FAILURE(status)) return FromUtf8(bytes);
  String text;
  std::array<char16_t, 4096> piece;
  const char* from = bytes.data();
  const char* const end = from + bytes.size();
  do {
    status = U_ZERO_ERROR;
    char16_t* to = piece.data();
    ucnv_toUnicode(converter.get(), &to, piece.data() + piece.size(), &from, end, nullptr, true,
                   &status);
    text.append(piece.data(), to);
  } while (status == U_BUFFER_OVERFLOW_ERROR);
  return text;
}

}  // namespace

String DecodeBody(std::string_view body, std::string_view content_type) {
  constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
  if (body.starts_with(kUtf8Mark)) return FromUtf8(body.substr(kUtf8Mark.size()));
  if (body.starts_with("\xFF\xFE")) return Convert(body.substr(2), "utf-16le");
  if (body.starts_with("\xFE\xFF")) return Convert(body.substr(2), "utf-16be");
  const std::string charset = CharsetOf(content_type);
  if (charset.empty() || charset == "utf-8") return FromUtf8(body);
  const bool is_ansi =
      charset == "iso-8859-1" || charset == "us-ascii" || charset == "windows-1252";
  return is_ansi ? FromAnsi(body) : Convert(body, charset);
}

}  // namespace kestrelon::desktop
