#include "desktop/outlook/mail/Recipients.h"

#include <algorithm>

#include "desktop/outlook/formats/OutlookErrors.h"

namespace kestrelon::desktop {
namespace {

bool IsControlOrBlank(char16_t c) {
  return c <= u' ' || (c >= 0x7F && c <= 0xA0) || (c >= 0x2000 && c <= 0x200F) ||
         (c >= 0x2028 && c <= 0x202F) || c == 0x3000;
}

// Strict on purpose: what is not plainly an address is kept as a name, and nothing is lost.
bool IsAddress(StringView text) {
  const size_t at = text.find(u'@');
  if (at == 0 || at == StringView::npos || at + 1 == text.size()) return false;
  if (text.find(u'@', at + 1) != StringView::npos) return false;
  return std::none_of(text.begin(), text.end(), [](char16_t c) {
    return IsControlOrBlank(c) || StringView(u"<>()[]\\,;:\"").find(c) != StringView::npos;
  });
}

// The pieces between separators; one within quotes belongs to a name.
std::vector<String> SplitNames(StringView text, char16_t separator) {
  std::vector<String> pieces(1);
  for (size_t i = 0; i < text.size(); ++i) {
    const size_t closing = text[i] == u'"' ? text.find(u'"', i + 1) : StringView::npos;
    if (closing != StringView::npos) {
      pieces.back() += text.substr(i, closing - i);
      i = closing;
    }
    if (text[i] == separator) {
      pieces.emplace_back();
    } else {
      pieces.back() += text[i];
    }
  }
  return pieces;
}

// The addresses that commas separate, as mail programs write them; the text itself where a piece is
// none: names have commas too.
std::vector<String> AddressesOf(const String& text) {
  std::vector<String> pieces = SplitNames(text, u',');
  const bool are_addresses = std::all_of(pieces.begin(), pieces.end(), [](const String& piece) {
    return Trim(piece).empty() || !Recipient(piece, RecipientType::kTo).address().empty();
  });
  return are_addresses ? pieces : std::vector<String>{text};
}

String WithoutQuotes(const String& name) {
  const bool is_quoted = name.size() > 1 && name.starts_with(u'"') && name.ends_with(u'"');
  return is_quoted ? name.substr(1, name.size() - 2) : name;
}

}  // namespace

Recipient::Recipient(StringView text, RecipientType type, KnowsUser knows_user)
    : text_(Trim(text)), name_(text_), type_(type), knows_user_(knows_user) {
  if (IsAddress(text_)) {
    address_ = text_;
    return;
  }
  const size_t bracket = text_.rfind(u'<');
  if (bracket == String::npos || !text_.ends_with(u'>')) return;
  const String address = text_.substr(bracket + 1, text_.size() - bracket - 2);
  if (!IsAddress(address)) return;
  address_ = address;
  const String name = WithoutQuotes(Trim(StringView(text_).substr(0, bracket)));
  name_ = name.empty() ? address : name;
}

const MemberTable<Recipient>& Recipient::Members() {
  static const MemberTable<Recipient> table =
      MemberTable<Recipient>(u"Recipient")
          .Property(u"Name", &Recipient::GetName)
          .Property(u"", &Recipient::GetName)
          .Property(u"Address", &Recipient::GetAddress)
          .Property(u"Resolved", &Recipient::GetResolved)
          .Property(u"Type", &Recipient::GetType, &Recipient::PutType)
          .Method(u"Resolve", &Recipient::Resolve);
  return table;
}

Value Recipient::GetResolved() {
  return !address_.empty() || (knows_user_ != nullptr && knows_user_(name_));
}

void Recipient::PutType(const Value& value) {
  const int32_t type = value.ToLong();
  if (type < 1 || type > 3) {
    throw AutomationError(kInvalidProcedureCall,
                          u"The type of a recipient is To (1), CC (2) or BCC (3)");
  }
  type_ = static_cast<RecipientType>(type);
}

const MemberTable<Recipients>& Recipients::Members() {
  static const MemberTable<Recipients> table = MemberTable<Recipients>(u"Recipients")
                                                   .Property(u"Count", &Recipients::GetCount)
                                                   .Method(u"Item", &Recipients::Item, {u"Index"})
                                                   .Method(u"", &Recipients::Item, {u"Index"})
                                                   .Method(u"Add", &Recipients::Add, {u"Name"});
  return table;
}

std::unique_ptr<Enumerator> Recipients::Enumerate() {
  return std::make_unique<VectorEnumerator>(
      std::vector<Value>(recipients_.begin(), recipients_.end()));
}

String Recipients::Joined(RecipientType type) const {
  String joined;
  for (const auto& recipient : recipients_) {
    if (recipient->type() != type) continue;
    joined += (joined.empty() ? u"" : u"; ") + recipient->text();
  }
  return joined;
}

void Recipients::Replace(RecipientType type, StringView text) {
  std::erase_if(recipients_, [&](const auto& recipient) { return recipient->type() == type; });
  AddEach(type, text);
}

Value Recipients::GetCount() { return static_cast<int64_t>(recipients_.size()); }

Value Recipients::Item(const MethodArguments& arguments) {
  return Object(recipients_[PlaceInCollection(arguments.Require(0), recipients_.size())]);
}

// A list of addresses is as many recipients; the first is given back.
Value Recipients::Add(const MethodArguments& arguments) {
  const size_t first = recipients_.size();
  AddEach(RecipientType::kTo, arguments.Require(0).ToText());
  if (first == recipients_.size()) {
    throw AutomationError(kInvalidProcedureCall, u"A recipient needs a name or an address");
  }
  return Object(recipients_[first]);
}

void Recipients::AddEach(RecipientType type, StringView text) {
  for (const String& part : SplitNames(text, u';')) {
    for (const String& name : AddressesOf(part)) {
      if (!Trim(name).empty()) recipients_.push_back(std::make_shared<Recipient>(name, type));
    }
  }
}

}  // namespace kestrelon::desktop
