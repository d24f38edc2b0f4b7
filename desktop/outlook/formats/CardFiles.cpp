// What is done with whole cards.
#include "desktop/outlook/formats/Card.h"
#include "desktop/outlook/formats/ContactDocument.h"

namespace kestrelon::desktop {
namespace {

constexpr std::string_view kOwnLines = "X-KESTRELON-";

bool IsOwnParameter(const Parameter& parameter) { return parameter.name.starts_with(kOwnLines); }

bool StartsWith(std::string_view text, std::string_view start) {
  return EqualAscii(text.substr(0, start.size()), start);
}

// Whether a look at the line starts is enough to know that ReadContact finds a contact. It must not
// say so of anything else: an item that cannot be read would make its whole folder fail.
bool IsPlainContact(std::string_view content) {
  constexpr std::string_view kBegin = "BEGIN:VCARD", kEnd = "END:VCARD";
  if (content.starts_with("\xEF\xBB\xBF")) content.remove_prefix(3);
  if (!StartsWith(content, kBegin)) return false;
  content.remove_prefix(kBegin.size());
  if (content.starts_with('\r')) content.remove_prefix(1);
  if (!content.starts_with('\n')) return false;
  content.remove_prefix(1);
  if (content.starts_with(' ') || content.starts_with('\t')) return false;
  while (!content.empty()) {
    const size_t end = std::min(content.find('\n'), content.size() - 1);
    const std::string_view line = content.substr(0, end + 1);
    content.remove_prefix(end + 1);
    if (std::string_view("BbEeKkXx").find(line.front()) == std::string_view::npos) continue;
    if (StartsWith(line, kEnd)) return line.find_first_of("\r\n") == kEnd.size();
    const bool is_kind = StartsWith(line, "KIND") || StartsWith(line, "X-ADDRESSBOOKSERVER-KIND");
    if (StartsWith(line, "BEGIN") || (is_kind && !StartsWith(line, "KIND:INDIVIDUAL")))
      return false;
  }
  return false;
}

}  // namespace

std::optional<ItemClass> ClassOfCard(std::string_view content) {
  if (IsPlainContact(content)) return ItemClass::kContact;
  const std::unique_ptr<ItemDocument> card = ReadContact(std::string(content));
  return card ? std::optional(card->item_class()) : std::nullopt;
}

std::vector<std::string> SplitCards(std::string_view content) {
  FileText file = DecodeFile(std::string(content));
  const ContentLines lines(std::move(file.text));
  file.tail.clear();
  std::vector<std::string> cards;
  auto card = lines.FindComponent("VCARD", lines.Whole());
  for (; card; card = lines.FindComponent("VCARD", lines.Whole(), card->end)) {
    const bool closed = card->end < lines.size() && lines.Is(card->end, "END");
    const size_t end = card->end + (closed ? 1 : 0);
    cards.push_back(EncodeFile(file, lines.Bytes(card->begin, end)));
  }
  return cards;
}

std::string CardToSend(const ItemDocument& contact) {
  FileText file = DecodeFile(contact.content());
  ContentLines lines(std::move(file.text));
  auto card = lines.FindComponent("VCARD", lines.Whole());
  if (!card) return contact.content();
  for (size_t line = card->end; --line > card->begin;) {
    if (StartsWith(lines.Name(line), kOwnLines)) {
      lines.Remove(line);
      --card->end;
    } else {
      lines.RemoveParameters(line, IsOwnParameter);
    }
  }
  return std::string(lines.Bytes(card->begin, std::min(card->end + 1, lines.size())));
}

}  // namespace kestrelon::desktop
