#include "desktop/outlook/mail/DraftMessage.h"

#include <gmime/gmime.h>

#include <algorithm>
#include <array>

#include "desktop/outlook/mail/HtmlPictures.h"
#include "desktop/outlook/mail/HtmlText.h"

namespace kestrelon::desktop {
namespace {

constexpr const char* kUtf8 = "utf-8";
constexpr const char* kIdDomain = "@kestrelon.invalid";

struct Unref {
  void operator()(void* object) const { g_object_unref(object); }
};
template <typename T>
using Owned = std::unique_ptr<T, Unref>;

struct MediaType {
  StringView extension;
  const char* type;
  const char* subtype;
};

constexpr std::array<MediaType, 14> kMediaTypes = {{
    {u"doc", "application", "msword"},
    {u"dot", "application", "msword"},
    {u"docx", "application", "vnd.openxmlformats-officedocument.wordprocessingml.document"},
    {u"docm", "application", "vnd.ms-word.document.macroEnabled.12"},
    {u"pdf", "application", "pdf"},
    {u"rtf", "application", "rtf"},
    {u"odt", "application", "vnd.oasis.opendocument.text"},
    {u"xls", "application", "vnd.ms-excel"},
    {u"xlsx", "application", "vnd.openxmlformats-officedocument.spreadsheetml.sheet"},
    {u"htm", "text", "html"},
    {u"html", "text", "html"},
    {u"txt", "text", "plain"},
    {u"vcf", "text", "vcard"},
    {u"xml", "application", "xml"},
}};

MediaType MediaTypeOf(const String& file_name) {
  const size_t dot = file_name.rfind(u'.');
  if (dot != String::npos) {
    const String extension = LowerCase(StringView(file_name).substr(dot + 1));
    for (const MediaType& type : kMediaTypes) {
      if (type.extension == extension) return type;
    }
  }
  return {u"", "application", "octet-stream"};
}

// A header is one line: control characters would end it, or hide in it.
std::string HeaderText(std::string text) {
  const auto is_control = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
  std::replace_if(text.begin(), text.end(), is_control, ' ');
  return text;
}

// Line feeds only, for the library to turn into the message's line ends.
std::string BodyText(std::string_view text) {
  std::string body;
  body.reserve(text.size());
  for (size_t at = 0; at < text.size(); ++at) {
    const bool is_return = text[at] == '\r';
    if (is_return && at + 1 < text.size() && text[at + 1] == '\n') continue;
    body += is_return ? '\n' : text[at];
  }
  return body;
}

// A name without an address is an empty group: the one form that a header has for it. The library
// does not fold it, so what is too long for a line of a message is cut.
Owned<InternetAddress> NameAlone(const String& name) {
  constexpr int64_t kLongestName = 160;
  const std::string text = HeaderText(ToUtf8(Left(name, kLongestName)));
  return Owned<InternetAddress>(internet_address_group_new(text.c_str()));
}

Owned<InternetAddress> AddressOf(const Recipient& recipient) {
  if (recipient.address().empty()) return NameAlone(recipient.name());
  const bool has_name = recipient.name() != recipient.address();
  const std::string name = has_name ? HeaderText(ToUtf8(recipient.name())) : "";
  return Owned<InternetAddress>(internet_address_mailbox_new(has_name ? name.c_str() : nullptr,
                                                             ToUtf8(recipient.address()).c_str()));
}

void AddRecipients(GMimeMessage* message,
                   const std::vector<std::shared_ptr<Recipient>>& recipients) {
  for (const auto& recipient : recipients) {
    const GMimeAddressType type = recipient->type() == RecipientType::kCc ? GMIME_ADDRESS_TYPE_CC
                                  : recipient->type() == RecipientType::kBcc
                                      ? GMIME_ADDRESS_TYPE_BCC
                                      : GMIME_ADDRESS_TYPE_TO;
    const Owned<InternetAddress> address = AddressOf(*recipient);
    internet_address_set_charset(address.get(), kUtf8);
    internet_address_list_add(g_mime_message_get_addresses(message, type), address.get());
  }
}

void SetContent(GMimePart* part, std::string_view content, GMimeContentEncoding encoding) {
  const Owned<GMimeStream> stream(
      g_mime_stream_mem_new_with_buffer(content.data(), content.size()));
  const Owned<GMimeDataWrapper> wrapper(
      g_mime_data_wrapper_new_with_stream(stream.get(), GMIME_CONTENT_ENCODING_DEFAULT));
  g_mime_part_set_content(part, wrapper.get());
  g_mime_part_set_content_encoding(part, encoding);
}

Owned<GMimeObject> TextPart(const char* subtype, std::string_view text) {
  GMimeTextPart* part = g_mime_text_part_new_with_subtype(subtype);
  Owned<GMimeObject> owned(GMIME_OBJECT(part));
  g_mime_text_part_set_charset(part, kUtf8);
  SetContent(GMIME_PART(part), BodyText(text), GMIME_CONTENT_ENCODING_QUOTEDPRINTABLE);
  return owned;
}

// The library would choose the smallest character set that fits.
void WriteInUtf8(GMimeParamList* parameters, const char* name) {
  g_mime_param_set_charset(g_mime_param_list_get_parameter(parameters, name), kUtf8);
}

void SetFileName(GMimePart* part, const String& file_name) {
  g_mime_part_set_filename(part, HeaderText(ToUtf8(file_name)).c_str());
  GMimeObject* object = GMIME_OBJECT(part);
  WriteInUtf8(g_mime_content_type_get_parameters(g_mime_object_get_content_type(object)), "name");
  WriteInUtf8(
      g_mime_content_disposition_get_parameters(g_mime_object_get_content_disposition(object)),
      "filename");
}

Owned<GMimeObject> AttachmentPart(const Attachment& attachment) {
  const MediaType media_type = MediaTypeOf(attachment.file_name());
  GMimePart* part = g_mime_part_new_with_type(media_type.type, media_type.subtype);
  Owned<GMimeObject> owned(GMIME_OBJECT(part));
  SetContent(part, attachment.content(), GMIME_CONTENT_ENCODING_BASE64);
  // Readers take a text of no character set for ASCII.
  const std::string& content = attachment.content();
  if (media_type.type == std::string_view("text") &&
      g_utf8_validate(content.data(), static_cast<gssize>(content.size()), nullptr) != 0) {
    g_mime_object_set_content_type_parameter(owned.get(), "charset", kUtf8);
  }
  g_mime_object_set_disposition(owned.get(), GMIME_DISPOSITION_ATTACHMENT);
  SetFileName(part, attachment.file_name());
  return owned;
}

Owned<GMimeObject> Multipart(const char* subtype, Owned<GMimeObject> first) {
  GMimeMultipart* multipart = g_mime_multipart_new_with_subtype(subtype);
  g_mime_multipart_add(multipart, first.get());
  return Owned<GMimeObject>(GMIME_OBJECT(multipart));
}

Owned<GMimeObject> HtmlPart(const DraftMessage& draft) {
  const auto [html, pictures] = TakePictures(DeclareUtf8(draft.html_body), draft.id + kIdDomain);
  Owned<GMimeObject> page = TextPart("html", html);
  if (pictures.empty()) return page;
  Owned<GMimeObject> related = Multipart("related", std::move(page));
  g_mime_object_set_content_type_parameter(related.get(), "type", "text/html");
  for (const HtmlPicture& picture : pictures) {
    GMimePart* part = g_mime_part_new_with_type("image", picture.subtype.c_str());
    const Owned<GMimeObject> owned(GMIME_OBJECT(part));
    SetContent(part, picture.content, GMIME_CONTENT_ENCODING_BASE64);
    g_mime_object_set_disposition(owned.get(), GMIME_DISPOSITION_INLINE);
    g_mime_object_set_content_id(owned.get(), picture.id.c_str());
    g_mime_multipart_add(GMIME_MULTIPART(related.get()), owned.get());
  }
  return related;
}

Owned<GMimeObject> BodyPart(const DraftMessage& draft) {
  Owned<GMimeObject> body;
  if (draft.html_body.empty()) {
    body = TextPart("plain", draft.plain_body);
  } else {
    body = Multipart("alternative", TextPart("plain", HtmlToPlainText(draft.html_body)));
    g_mime_multipart_add(GMIME_MULTIPART(body.get()), HtmlPart(draft).get());
  }
  if (draft.attachments->empty()) return body;
  Owned<GMimeObject> mixed = Multipart("mixed", std::move(body));
  for (const auto& attachment : *draft.attachments) {
    g_mime_multipart_add(GMIME_MULTIPART(mixed.get()), AttachmentPart(*attachment).get());
  }
  return mixed;
}

std::string Serialize(GMimeMessage* message) {
  GMimeFormatOptions* options = g_mime_format_options_new();
  g_mime_format_options_set_newline_format(options, GMIME_NEWLINE_FORMAT_DOS);
  char* text = g_mime_object_to_string(GMIME_OBJECT(message), options);
  std::string serialized = text;
  g_free(text);
  g_mime_format_options_free(options);
  return serialized;
}

}  // namespace

std::string Compose(const DraftMessage& draft) {
  static const bool initialized = (g_mime_init(), true);
  static_cast<void>(initialized);
  const Owned<GMimeMessage> message(g_mime_message_new(FALSE));
  GMimeMessage* mail = message.get();
  g_mime_object_set_header(GMIME_OBJECT(mail), "X-Unsent", "1", nullptr);
  AddRecipients(mail, *draft.recipients);
  g_mime_message_set_subject(mail, HeaderText(draft.subject).c_str(), kUtf8);
  GDateTime* now = g_date_time_new_now_local();
  g_mime_message_set_date(mail, now);
  g_date_time_unref(now);
  g_mime_message_set_message_id(mail, (draft.id + kIdDomain).c_str());
  g_mime_message_set_mime_part(mail, BodyPart(draft).get());
  return Serialize(mail);
}

}  // namespace kestrelon::desktop
