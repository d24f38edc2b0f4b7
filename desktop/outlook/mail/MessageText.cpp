#include "desktop/outlook/mail/MessageText.h"

#include <gmime/gmime.h>

#include <algorithm>
#include <cstring>
#include <ctime>
#include <memory>
#include <vector>

#include "automation/AutomationError.h"
#include "desktop/outlook/mail/HtmlText.h"

namespace kestrelon::desktop {
namespace {

// Those that the library takes apart.
constexpr const char* kAddressHeaders[] = {"From", "Sender", "Reply-To", "To", "Cc", "Bcc"};

struct Unref {
  void operator()(void* object) const { g_object_unref(object); }
};
template <typename T>
using Owned = std::unique_ptr<T, Unref>;

struct Free {
  void operator()(char* text) const { g_free(text); }
};
using OwnedText = std::unique_ptr<char, Free>;

// Starts the library. Raw 8-bit text is UTF-8 where it can be.
GMimeParserOptions* Options() {
  static GMimeParserOptions* const options = [] {
    g_mime_init();
    GMimeParserOptions* const made = g_mime_parser_options_new();
    const char* charsets[] = {"utf-8", "windows-1252", nullptr};
    g_mime_parser_options_set_fallback_charsets(made, charsets);
    return made;
  }();
  return options;
}

// The library's texts end at NUL.
std::string WithoutNul(std::string_view text) {
  std::string out(text);
  std::replace(out.begin(), out.end(), '\0', ' ');
  return out;
}

// Encoded words of base64 as those of quoted-printable: the library loses the words that follow one
// with padding. It joins the bytes of adjacent words, so characters may go across them.
std::string WithQuotedWords(std::string_view value) {
  constexpr const char* kDigits = "0123456789ABCDEF";
  std::string out;
  while (!value.empty()) {
    const size_t begin = value.find("=?");
    const size_t kind = begin == std::string_view::npos ? begin : value.find('?', begin + 2);
    const bool is_base64 = kind != std::string_view::npos && kind + 2 < value.size() &&
                           (value[kind + 1] == 'B' || value[kind + 1] == 'b') &&
                           value[kind + 2] == '?';
    const size_t end = is_base64 ? value.find("?=", kind + 3) : std::string_view::npos;
    if (end == std::string_view::npos) {
      const size_t next = begin == std::string_view::npos ? value.size() : begin + 2;
      out += value.substr(0, next);
      value.remove_prefix(next);
      continue;
    }
    out += value.substr(0, kind);
    out += "?Q?";
    gsize size = 0;
    const std::string code(value.substr(kind + 3, end - kind - 3));
    guchar* const bytes = g_base64_decode(code.c_str(), &size);
    for (gsize i = 0; i < size; ++i) {
      out += '=';
      out += kDigits[bytes[i] >> 4];
      out += kDigits[bytes[i] & 15];
    }
    g_free(bytes);
    out += "?=";
    value.remove_prefix(end + 2);
  }
  return out;
}

// A header value as the library is to get it.
std::string Prepare(std::string_view value) { return WithQuotedWords(WithoutNul(value)); }

// Groups of addresses do not nest; the library calls itself for each colon of those that do.
bool IsOverfull(std::string_view addresses) {
  constexpr int kMostGroups = 500;
  return std::count(addresses.begin(), addresses.end(), ':') > kMostGroups;
}

// The message without the headers that would nest so, those of messages within it included.
std::string WithoutOverfullAddresses(std::string_view message) {
  std::string out(message);
  for (size_t begin = 0; begin < out.size();) {
    size_t end = out.find('\n', begin);
    const std::string_view line = std::string_view(out).substr(begin, end - begin);
    const bool has_addresses = std::any_of(
        std::begin(kAddressHeaders), std::end(kAddressHeaders), [line](const char* name) {
          return line.size() >= std::strlen(name) &&
                 g_ascii_strncasecmp(line.data(), name, std::strlen(name)) == 0;
        });
    while (has_addresses && end != std::string::npos && end + 1 < out.size() &&
           (out[end + 1] == ' ' || out[end + 1] == '\t')) {
      end = out.find('\n', end + 1);
    }
    end = end == std::string::npos ? out.size() : end + 1;
    if (has_addresses && IsOverfull(std::string_view(out).substr(begin, end - begin))) {
      out.erase(begin, end - begin);
    } else {
      begin = end;
    }
  }
  return out;
}

String FromRawBytes(std::string_view bytes) {
  const bool is_utf8 = g_utf8_validate(WithoutNul(bytes).c_str(), -1, nullptr);
  return is_utf8 ? FromUtf8(bytes) : FromAnsi(bytes);
}

std::string BytesOf(GMimeDataWrapper* content, GMimeFilter* filter) {
  const Owned<GMimeStream> memory(g_mime_stream_mem_new());
  const Owned<GMimeStream> filtered(g_mime_stream_filter_new(memory.get()));
  if (filter != nullptr) g_mime_stream_filter_add(GMIME_STREAM_FILTER(filtered.get()), filter);
  g_mime_data_wrapper_write_to_stream(content, filtered.get());
  g_mime_stream_flush(filtered.get());
  const GByteArray* bytes = g_mime_stream_mem_get_byte_array(GMIME_STREAM_MEM(memory.get()));
  return std::string(reinterpret_cast<const char*>(bytes->data), bytes->len);
}

String TextOfPart(GMimeTextPart* part) {
  GMimeDataWrapper* content = g_mime_part_get_content(GMIME_PART(part));
  if (content == nullptr) return {};
  const char* charset = g_mime_text_part_get_charset(part);
  const String name = LowerCase(FromUtf8(charset == nullptr ? "" : charset));
  // What calls itself one of these is often the last; Windows-1252 holds all of Latin 1.
  const bool is_common = name.empty() || name == u"us-ascii" || name == u"utf-8" ||
                         name == u"iso-8859-1" || name == u"windows-1252";
  Owned<GMimeFilter> filter;
  if (!is_common) filter.reset(g_mime_filter_charset_new(charset, "utf-8"));
  const std::string bytes = BytesOf(content, filter.get());
  const bool is_ansi = name == u"iso-8859-1" || name == u"windows-1252";
  if (filter) return FromUtf8(bytes);
  return is_ansi ? FromAnsi(bytes) : FromRawBytes(bytes);
}

// The first text of each kind that is not an attachment.
struct TextParts {
  GMimeTextPart* plain = nullptr;
  GMimeTextPart* html = nullptr;
};

void FindTexts(GMimeObject*, GMimeObject* part, gpointer found) {
  if (!GMIME_IS_TEXT_PART(part) || g_mime_part_is_attachment(GMIME_PART(part))) return;
  auto& texts = *static_cast<TextParts*>(found);
  GMimeContentType* const type = g_mime_object_get_content_type(part);
  const bool is_html = g_mime_content_type_is_type(type, "text", "html");
  if (!is_html && !g_mime_content_type_is_type(type, "text", "plain")) return;
  GMimeTextPart*& slot = is_html ? texts.html : texts.plain;
  if (slot == nullptr) slot = GMIME_TEXT_PART(part);
}

String WithCrLf(StringView text) {
  return ReplaceAll(ReplaceAll(ReplaceAll(text, u"\r\n", u"\n"), u"\r", u"\n"), u"\n", u"\r\n");
}

void AddAddresses(InternetAddressList* list, std::vector<MailAddress>& out) {
  for (int i = 0; i < internet_address_list_length(list); ++i) {
    InternetAddress* const each = internet_address_list_get_address(list, i);
    const char* name_text = internet_address_get_name(each);
    const String name = FromUtf8(name_text == nullptr ? "" : name_text);
    if (INTERNET_ADDRESS_IS_GROUP(each)) {
      InternetAddressList* members =
          internet_address_group_get_members(INTERNET_ADDRESS_GROUP(each));
      const bool has_members = members != nullptr && internet_address_list_length(members) > 0;
      if (has_members) {
        AddAddresses(members, out);
      } else {
        out.push_back({name, {}});
      }
      continue;
    }
    const char* address_text = internet_address_mailbox_get_addr(INTERNET_ADDRESS_MAILBOX(each));
    const String address = FromUtf8(address_text == nullptr ? "" : address_text);
    out.push_back({name.empty() ? address : name, address});
  }
}

}  // namespace

String DecodeHeaderText(std::string_view value) {
  const OwnedText unfolded(g_mime_utils_header_unfold(Prepare(value).c_str()));
  const OwnedText decoded(g_mime_utils_header_decode_text(Options(), unfolded.get()));
  return Trim(FromUtf8(decoded.get()));
}

std::vector<MailAddress> DecodeAddresses(std::string_view value) {
  std::vector<MailAddress> addresses;
  Owned<InternetAddressList> list;
  if (!IsOverfull(value)) {
    list.reset(internet_address_list_parse(Options(), Prepare(value).c_str()));
  }
  if (list) AddAddresses(list.get(), addresses);
  if (addresses.empty()) {
    const String text = DecodeHeaderText(value);
    if (!text.empty()) addresses.push_back({text, {}});
  }
  return addresses;
}

std::optional<Date> DecodeHeaderDate(std::string_view value) {
  Options();
  GDateTime* const moment = g_mime_utils_header_decode_date(WithoutNul(value).c_str());
  if (moment == nullptr) return std::nullopt;
  const std::time_t seconds = g_date_time_to_unix(moment);
  g_date_time_unref(moment);
  std::tm local{};
  if (localtime_r(&seconds, &local) == nullptr) return std::nullopt;
  std::optional<Date> date;
  IgnoreFailures([&] {
    date = MakeDate({local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                     local.tm_min, std::min(local.tm_sec, 59)});
  });
  return date;
}

MessageBodies ReadBodies(std::string_view text) {
  const std::string message = WithoutOverfullAddresses(text);
  GMimeParserOptions* const options = Options();
  const Owned<GMimeStream> stream(
      g_mime_stream_mem_new_with_buffer(message.data(), message.size()));
  const Owned<GMimeParser> parser(g_mime_parser_new_with_stream(stream.get()));
  const Owned<GMimeMessage> parsed(g_mime_parser_construct_message(parser.get(), options));
  MessageBodies bodies;
  if (!parsed) return bodies;
  TextParts texts;
  GMimeObject* const top = g_mime_message_get_mime_part(parsed.get());
  if (top != nullptr && GMIME_IS_MULTIPART(top)) {
    g_mime_multipart_foreach(GMIME_MULTIPART(top), FindTexts, &texts);
  } else if (top != nullptr) {
    FindTexts(nullptr, top, &texts);
  }
  if (texts.html != nullptr) bodies.html = WithCrLf(TextOfPart(texts.html));
  bodies.plain = texts.plain != nullptr ? WithCrLf(TextOfPart(texts.plain))
                                        : WithCrLf(FromUtf8(HtmlToPlainText(ToUtf8(bodies.html))));
  return bodies;
}

}  // namespace kestrelon::desktop
