#include "desktop/outlook/mail/HtmlPictures.h"

#include <glib.h>

#include <algorithm>
#include <array>
#include <optional>

namespace kestrelon::desktop {
namespace {

constexpr std::string_view kBlanks = " \t\r\n\f";
constexpr std::string_view kUriStart = "data:image/";
constexpr std::string_view kEncoding = ";base64";
constexpr std::array<std::string_view, 3> kAttributes = {"src", "background", "style"};

bool EqualsIgnoringCase(std::string_view one, std::string_view other) {
  return one.size() == other.size() &&
         g_ascii_strncasecmp(one.data(), other.data(), one.size()) == 0;
}

bool IsBlank(char c) { return kBlanks.find(c) != std::string_view::npos; }

// Nothing when the text is not base64 throughout; blanks do not count.
std::optional<std::string> DecodeBase64(std::string_view text) {
  std::string digits(text);
  std::erase_if(digits, IsBlank);
  const size_t size = digits.find_last_not_of('=') + 1;
  const bool is_base64 =
      std::all_of(digits.begin(), digits.begin() + static_cast<std::ptrdiff_t>(size),
                  [](char c) { return g_ascii_isalnum(c) || c == '+' || c == '/'; });
  if (!is_base64 || size == 0 || size % 4 == 1) return std::nullopt;
  digits.resize(size);
  digits.append((4 - size % 4) % 4, '=');
  gsize decoded_size = 0;
  g_base64_decode_inplace(digits.data(), &decoded_size);
  digits.resize(decoded_size);
  return digits;
}

// `uri` starts as kUriStart does.
std::optional<HtmlPicture> PictureOf(std::string_view uri) {
  uri.remove_prefix(kUriStart.size());
  const size_t comma = uri.find(',');
  if (comma == std::string_view::npos) return std::nullopt;
  const std::string_view type = uri.substr(0, comma);
  if (type.size() < kEncoding.size() ||
      !EqualsIgnoringCase(type.substr(type.size() - kEncoding.size()), kEncoding)) {
    return std::nullopt;
  }
  const std::string_view subtype = type.substr(0, type.find(';'));
  const bool is_type = !subtype.empty() && std::all_of(subtype.begin(), subtype.end(), [](char c) {
    return g_ascii_isalnum(c) || c == '+' || c == '-' || c == '.';
  });
  std::optional<std::string> content = DecodeBase64(uri.substr(comma + 1));
  if (!is_type || !content) return std::nullopt;
  return HtmlPicture{"", std::string(subtype), *std::move(content)};
}

// Walks through the tags of a page and copies it, with other references.
class PictureTaker {
 public:
  PictureTaker(std::string_view html, std::string_view id_end) : html_(html), id_end_(id_end) {}

  PageAndPictures Take() && {
    for (size_t at = 0; (at = html_.find('<', at)) != std::string_view::npos;) {
      if (html_.substr(at).starts_with("<!--")) {
        at = html_.find("-->", at);
      } else {
        ++at;
        if (at < html_.size() && g_ascii_isalpha(html_[at])) at = EndOfTag(at);
      }
    }
    result_.html.append(html_.substr(copied_));
    return std::move(result_);
  }

 private:
  // `at` is at the tag's name, which passes for an attribute without a value.
  size_t EndOfTag(size_t at) {
    while ((at = html_.find_first_not_of(" \t\r\n\f/", at)) != std::string_view::npos) {
      if (html_[at] == '>') return at;
      const size_t name_end = html_.find_first_of(" \t\r\n\f/=>", at + 1);
      const size_t equals = html_.find_first_not_of(kBlanks, name_end);
      if (equals == std::string_view::npos) return equals;
      const std::string_view name = html_.substr(at, name_end - at);
      at = name_end;
      if (html_[equals] == '=') at = EndOfValue(name, equals + 1);
    }
    return at;
  }

  size_t EndOfValue(std::string_view attribute, size_t at) {
    at = html_.find_first_not_of(kBlanks, at);
    if (at == std::string_view::npos) return at;
    const bool is_quoted = html_[at] == '"' || html_[at] == '\'';
    const size_t end =
        is_quoted ? html_.find(html_[at], at + 1) : html_.find_first_of(" \t\r\n\f>", at);
    if (end == std::string_view::npos) return end;
    const bool holds_pictures =
        std::any_of(kAttributes.begin(), kAttributes.end(),
                    [&](std::string_view name) { return EqualsIgnoringCase(attribute, name); });
    if (holds_pictures) ReplaceWithin(is_quoted ? at + 1 : at, end);
    return is_quoted ? end + 1 : end;
  }

  void ReplaceWithin(size_t at, size_t end) {
    while (at + kUriStart.size() < end) {
      if (!EqualsIgnoringCase(html_.substr(at, kUriStart.size()), kUriStart)) {
        ++at;
        continue;
      }
      // In a style, it stands in url(…), perhaps within quotes or their references.
      const size_t uri_end = std::min(html_.find_first_of("\"'()&", at), end);
      if (std::optional<HtmlPicture> picture = PictureOf(html_.substr(at, uri_end - at))) {
        result_.html.append(html_.substr(copied_, at - copied_));
        result_.html.append("cid:").append(IdOf(*std::move(picture)));
        copied_ = uri_end;
      }
      at = uri_end;
    }
  }

  const std::string& IdOf(HtmlPicture picture) {
    auto& pictures = result_.pictures;
    const auto same = std::find_if(pictures.begin(), pictures.end(), [&](const HtmlPicture& other) {
      return other.subtype == picture.subtype && other.content == picture.content;
    });
    if (same != pictures.end()) return same->id;
    picture.id = "picture" + std::to_string(pictures.size() + 1) + "." + id_end_;
    return pictures.emplace_back(std::move(picture)).id;
  }

  const std::string_view html_;
  const std::string id_end_;
  size_t copied_ = 0;
  PageAndPictures result_;
};

}  // namespace

PageAndPictures TakePictures(std::string_view html, std::string_view id_end) {
  return PictureTaker(html, id_end).Take();
}

}  // namespace kestrelon::desktop
