#include "outlook/MatchIndex.h"

#include <algorithm>
#include <limits>

#include "outlook/OutlookConstants.h"

namespace kestrelon {
namespace {

constexpr size_t kNoRow = std::numeric_limits<size_t>::max();

String InBraces(StringView id) { return u"{" + String(id) + u"}"; }

// Three texts as one, which no other three give: the lengths of the names stand before them.
String NameAndEmailKey(StringView first_name, StringView last_name, StringView email) {
  String key;
  key.reserve(4 + first_name.size() + last_name.size() + email.size());
  for (const StringView name : {first_name, last_name}) {
    key += static_cast<char16_t>(name.size() >> 16);
    key += static_cast<char16_t>(name.size());
  }
  for (const StringView text : {first_name, last_name, email}) {
    for (const char16_t unit : text) key += LowerCase(unit);
  }
  return key;
}

void AddRow(const Object& item, size_t row, ContactMatchIndex& index) {
  // Rows come in their order, so an entry that is there already is the one to keep.
  const Object stamp = item.GetChild(u"UserProperties").CallChild(u"Find", u"KESTID");
  if (stamp) index.row_of_id.try_emplace(LowerCase(stamp.Get(u"Value").ToText()), row);
  if (item.Get(u"Class").ToLong() != olContact) return;
  const String first_name = item.Get(u"FirstName").ToText();
  const String last_name = item.Get(u"LastName").ToText();
  for (const StringView address : {u"Email1Address", u"Email2Address", u"Email3Address"}) {
    const String email = item.Get(address).ToText();
    // Nothing is looked up by a text that is empty.
    if (first_name.empty() || last_name.empty() || email.empty()) continue;
    index.row_of_name_and_email.try_emplace(NameAndEmailKey(first_name, last_name, email), row);
  }
}

template <typename Map>
size_t RowOf(const Map& rows, const typename Map::key_type& key) {
  const auto found = rows.find(key);
  return found == rows.end() ? kNoRow : found->second;
}

}  // namespace

ContactMatchIndex BuildMatchIndex(const Object& folder) {
  ContactMatchIndex index;
  const Object items = folder.GetChild(u"Items");
  const int32_t count = items.Get(u"Count").ToLong();
  const auto rows = static_cast<size_t>(std::max(count, 0));
  index.row_of_id.reserve(rows);
  index.row_of_name_and_email.reserve(2 * rows);  // few have more addresses
  for (int32_t i = 1; i <= count; ++i) {
    AddRow(items.CallChild(u"", i), static_cast<size_t>(i - 1), index);
  }
  return index;
}

IndexMatch FindFirstMatch(const ContactMatchIndex& index, const ContactKey& key, bool by_name) {
  const String id = LowerCase(key.id);
  const size_t id_row = std::min(RowOf(index.row_of_id, id), RowOf(index.row_of_id, InBraces(id)));
  size_t name_row = kNoRow;
  if (by_name) {
    name_row = RowOf(index.row_of_name_and_email,
                     NameAndEmailKey(key.first_name, key.last_name, key.email));
  }
  if (id_row == kNoRow && name_row == kNoRow) return {};
  if (id_row <= name_row) return {IndexMatch::kById, id_row};
  return {IndexMatch::kByNameAndEmail, name_row};
}

bool IsSameContactId(StringView stored, StringView id) {
  return EqualIgnoringCase(stored, id) || EqualIgnoringCase(stored, InBraces(id));
}

}  // namespace kestrelon
