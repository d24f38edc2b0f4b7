#include "desktop/outlook/mail/MessageDocument.h"

#include <algorithm>
#include <array>

#include "automation/AutomationError.h"
#include "desktop/outlook/mail/MessageHeaders.h"
#include "desktop/outlook/mail/MessageText.h"

namespace kestrelon::desktop {
namespace {

constexpr int32_t kReadOnlyProperty = 440;
constexpr const char* kUserProperty = "X-Kestrelon-Property";
// "1" or "0"; what other programs note about reading lies outside the message.
constexpr const char* kUnread = "X-Kestrelon-Unread";

bool Contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

String JoinedNames(const MessageHeaders& headers, const char* header) {
  String joined;
  for (const MailAddress& each : DecodeAddresses(headers.FindAll(header))) {
    if (!joined.empty()) joined += u"; ";
    joined += each.name;
  }
  return joined;
}

MailAddress Sender(const MessageHeaders& headers) {
  for (const char* header : {"From", "Sender", "Return-Path"}) {
    const std::vector<MailAddress> senders = DecodeAddresses(headers.Find(header));
    if (!senders.empty()) return senders.front();
  }
  return {};
}

std::optional<Date> SentOn(const MessageHeaders& headers) {
  return DecodeHeaderDate(headers.Find("Date"));
}

// When the last server took it, else when it was sent.
Date ReceivedTime(const MessageHeaders& headers) {
  const std::string_view received = headers.Find("Received");
  std::optional<Date> date;
  if (const size_t semicolon = received.rfind(';'); semicolon != std::string_view::npos) {
    date = DecodeHeaderDate(received.substr(semicolon + 1));
  }
  if (!date) date = SentOn(headers);
  return date.value_or(kNoDate);
}

bool IsUnread(const MessageHeaders& headers) {
  const std::string_view ours = headers.Find(kUnread);
  if (!ours.empty()) return ours != "0";
  const bool is_draft = headers.Find("X-Unsent") == "1";
  // Hexadecimal flags; the lowest one says "read".
  const std::string_view flags = headers.Find("X-Mozilla-Status");
  const bool is_flagged_read =
      !flags.empty() && Contains("13579bBdDfF", flags.substr(flags.size() - 1));
  return !is_draft && !is_flagged_read && !Contains(headers.Find("Status"), "R");
}

// OlImportance.
int32_t Importance(const MessageHeaders& headers) {
  const String word = LowerCase(DecodeHeaderText(headers.Find("Importance")));
  if (word == u"high") return 2;
  if (word == u"low") return 0;
  if (!word.empty()) return 1;
  const std::string_view priority = headers.Find("X-Priority");
  if (priority.empty()) return 1;
  return priority[0] == '1' || priority[0] == '2'   ? 2
         : priority[0] == '4' || priority[0] == '5' ? 0
                                                    : 1;
}

// OlSensitivity.
int32_t Sensitivity(const MessageHeaders& headers) {
  const String word = LowerCase(DecodeHeaderText(headers.Find("Sensitivity")));
  return word == u"personal" ? 1 : word == u"private" ? 2 : word == u"company-confidential" ? 3 : 0;
}

// Text that neither a header nor a blank line goes before is all body.
MessageBodies Bodies(const MessageHeaders& headers) {
  const std::string& message = headers.message();
  const bool is_bare = headers.size() == 0 && message.find_first_of("\r\n") != 0;
  return ReadBodies(is_bare ? "\n" + message : message);
}

struct Property {
  StringView name;  // in lower case
  Value (*get)(const MessageHeaders&);
};

using Headers = MessageHeaders;

const std::array<Property, 14> kProperties = {{
    {u"subject", [](const Headers& h) -> Value { return DecodeHeaderText(h.Find("Subject")); }},
    {u"sendername", [](const Headers& h) -> Value { return Sender(h).name; }},
    {u"senderemailaddress", [](const Headers& h) -> Value { return Sender(h).address; }},
    {u"to", [](const Headers& h) -> Value { return JoinedNames(h, "To"); }},
    {u"cc", [](const Headers& h) -> Value { return JoinedNames(h, "Cc"); }},
    {u"bcc", [](const Headers& h) -> Value { return JoinedNames(h, "Bcc"); }},
    {u"receivedtime", [](const Headers& h) -> Value { return ReceivedTime(h); }},
    {u"senton", [](const Headers& h) -> Value { return SentOn(h).value_or(kNoDate); }},
    {u"creationtime", [](const Headers& h) -> Value { return ReceivedTime(h); }},
    {u"unread", [](const Headers& h) -> Value { return IsUnread(h); }},
    {u"importance", [](const Headers& h) -> Value { return Importance(h); }},
    {u"sensitivity", [](const Headers& h) -> Value { return Sensitivity(h); }},
    {u"body", [](const Headers& h) -> Value { return Bodies(h).plain; }},
    {u"htmlbody", [](const Headers& h) -> Value { return Bodies(h).html; }},
}};

const Property* FindProperty(StringView name) {
  const auto found = std::find_if(kProperties.begin(), kProperties.end(),
                                  [name](const Property& p) { return p.name == name; });
  return found == kProperties.end() ? nullptr : &*found;
}

bool IsPlain(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
         c == '.' || c == '_';
}

// UTF-8 with everything but letters, digits, "-", "." and "_" as %XX, and a blank now and then for
// the header to be folded at.
std::string Encode(StringView text) {
  constexpr const char* kDigits = "0123456789ABCDEF";
  constexpr size_t kPiece = 60;
  std::string out;
  size_t length = 0;
  for (const char c : ToUtf8(text)) {
    if (length >= kPiece) {
      out += ' ';
      length = 0;
    }
    const auto byte = static_cast<unsigned char>(c);
    const std::string piece =
        IsPlain(c) ? std::string(1, c) : std::string{'%', kDigits[byte >> 4], kDigits[byte & 15]};
    out += piece;
    length += piece.size();
  }
  return out;
}

int DigitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

String Decode(std::string_view text) {
  std::string out;
  for (size_t at = 0; at < text.size(); ++at) {
    const int high = text[at] == '%' && at + 2 < text.size() ? DigitValue(text[at + 1]) : -1;
    const int low = high >= 0 ? DigitValue(text[at + 2]) : -1;
    if (low >= 0) {
      out += static_cast<char>(high * 16 + low);
      at += 2;
    } else {
      out += text[at];
    }
  }
  return FromUtf8(out);
}

std::string FormatUserField(const UserField& field) {
  return "name=" + Encode(field.name) + "; type=" + std::to_string(field.type) +
         "; value=" + Encode(field.value);
}

UserField ParseUserField(std::string_view value) {
  std::string text(value);
  text.erase(std::remove_if(text.begin(), text.end(),
                            [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }),
             text.end());
  UserField field;
  for (size_t at = 0; at < text.size();) {
    const size_t end = std::min(text.find(';', at), text.size());
    const std::string_view piece = std::string_view(text).substr(at, end - at);
    const std::string_view key = piece.substr(0, piece.find('='));
    const String decoded = Decode(piece.substr(std::min(piece.size(), key.size() + 1)));
    if (key == "name") field.name = decoded;
    if (key == "value") field.value = decoded;
    if (key == "type") IgnoreFailures([&] { field.type = Value(decoded).ToLong(); });
    at = end + 1;
  }
  return field;
}

class MessageDocument final : public ItemDocument {
 public:
  explicit MessageDocument(std::string content) : headers_(std::move(content)) {}

  ItemClass item_class() const override { return ItemClass::kMail; }
  const std::string& content() const override { return headers_.message(); }

  std::string Uid() const override {
    std::string_view id = headers_.Find("Message-ID");
    if (id.starts_with('<')) id.remove_prefix(1);
    return std::string(id.substr(0, id.find('>')));
  }

  bool Has(StringView property) const override { return FindProperty(property) != nullptr; }

  const std::vector<StringView>& PropertyNames() const override {
    static const std::vector<StringView> names = {
        u"Subject",      u"SenderName", u"SenderEmailAddress", u"To",
        u"CC",           u"BCC",        u"ReceivedTime",       u"SentOn",
        u"CreationTime", u"UnRead",     u"Importance",         u"Sensitivity",
        u"Body",         u"HTMLBody"};
    return names;
  }

  Value Get(StringView property) const override { return Required(property).get(headers_); }

  void Put(StringView property, const Value& value) override {
    Required(property);
    if (property != u"unread") {
      throw AutomationError(kReadOnlyProperty, u"A mail of the mailbox cannot be changed");
    }
    const bool unread = value.ToBoolean();
    if (unread != IsUnread(headers_)) PutOurs(kUnread, FindOurs(kUnread), unread ? "1" : "0");
  }

  std::vector<UserField> UserFields() const override {
    std::vector<UserField> fields;
    for (size_t i = 0; i < headers_.size(); ++i) {
      if (headers_.Is(i, kUserProperty)) fields.push_back(ParseUserField(headers_.Value(i)));
    }
    return fields;
  }

  std::optional<UserField> FindUserField(StringView name) const override {
    const size_t at = FindUserHeader(name);
    if (at == headers_.size()) return std::nullopt;
    return ParseUserField(headers_.Value(at));
  }

  void PutUserField(const UserField& field) override {
    const size_t at = FindUserHeader(field.name);
    if (at < headers_.size()) {
      const UserField old = ParseUserField(headers_.Value(at));
      if (old.name == field.name && old.type == field.type && old.value == field.value) return;
    }
    PutOurs(kUserProperty, at, FormatUserField(field));
  }

  void RemoveUserField(StringView name) override {
    for (size_t at = FindUserHeader(name); at < headers_.size(); at = FindUserHeader(name)) {
      headers_.Remove(at);
    }
  }

 private:
  static const Property& Required(StringView property) {
    const Property* const found = FindProperty(property);
    if (found == nullptr) throw AutomationError(kMemberNotFound);
    return *found;
  }

  bool IsOurs(size_t at) const {
    return headers_.Is(at, kUserProperty) || headers_.Is(at, kUnread);
  }

  size_t FindOurs(const char* name) const {
    size_t at = 0;
    while (at < headers_.size() && !headers_.Is(at, name)) ++at;
    return at;
  }

  // The number of headers when there is none.
  size_t FindUserHeader(StringView name) const {
    size_t at = 0;
    while (at < headers_.size() &&
           !(headers_.Is(at, kUserProperty) &&
             EqualIgnoringCase(ParseUserField(headers_.Value(at)).name, name))) {
      ++at;
    }
    return at;
  }

  // In the place of header `at`, or as the last of ours before all others.
  void PutOurs(const char* name, size_t at, const std::string& value) {
    if (at < headers_.size()) {
      headers_.Replace(at, name, value);
      return;
    }
    size_t first_of_others = 0;
    while (first_of_others < headers_.size() && IsOurs(first_of_others)) ++first_of_others;
    headers_.Insert(first_of_others, name, value);
  }

  MessageHeaders headers_;
};

}  // namespace

std::unique_ptr<ItemDocument> ReadMessage(std::string content) {
  return std::make_unique<MessageDocument>(std::move(content));
}

}  // namespace kestrelon::desktop
