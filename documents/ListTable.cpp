#include <algorithm>
#include <vector>

#include "documents/NodeList.h"
#include "documents/TagData.h"
#include "documents/WordTable.h"

namespace kestrelon {
namespace {

// "firstname" for a header cell "<contact_firstname>"; "" for a column that is left alone.
String ColumnKey(const String& header) {
  const size_t underscore = header.find(u'_');
  const bool is_key =
      header.starts_with(u'<') && header.ends_with(u'>') && underscore != String::npos;
  if (!is_key) return {};
  return LowerCase(header.substr(underscore + 1, header.size() - underscore - 2));
}

// keys[k] is the key of column k; index 0 is not used.
std::vector<String> ReadColumnKeys(const Object& table) {
  std::vector<String> keys = ReadHeaderCells(table);
  std::transform(keys.begin(), keys.end(), keys.begin(), ColumnKey);
  return keys;
}

bool FieldMatches(const Object& field, const String& key) {
  return key == LowerCase(GetNodeAttribute(field, u"templatetag")) ||
         key == LowerCase(GetNodeAttribute(field, u"templatetag2")) ||
         key == LowerCase(GetNodeAttribute(field, u"label"));
}

// Puts one attribute of the record's fields into the row. The search goes on after a match, so the
// last field that matches a column wins.
void FillRow(const Object& table, int32_t row, const Object& record,
             const std::vector<String>& keys, StringView attribute) {
  const Object fields = record.GetChild(u"childNodes");
  for (size_t column = 1; column < keys.size(); ++column) {
    if (keys[column].empty()) continue;
    ForEachElement(fields, [&](const Object& field) {
      if (!FieldMatches(field, keys[column])) return;
      CellRange(table, row, static_cast<int32_t>(column))
          .Put(u"Text", GetNodeAttribute(field, attribute));
    });
  }
}

}  // namespace

void FillListTable(const Object& wordTable, const Object& listNode) {
  const std::vector<String> keys = ReadColumnKeys(wordTable);
  const Object records = listNode.GetChild(u"childNodes");
  AddRowsFor(wordTable, records.Get(u"length").ToLong());
  int32_t row = 2;
  ForEachElement(records,
                 [&](const Object& record) { FillRow(wordTable, row++, record, keys, u"value"); });
  const Object first = records.CallChild(u"item", 0);
  FillRow(wordTable, 1, first, keys, u"label");
}

}  // namespace kestrelon
