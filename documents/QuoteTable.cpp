#include "documents/QuoteTable.h"

#include <optional>
#include <vector>

#include "documents/NodeList.h"
#include "documents/QuoteServices.h"
#include "documents/QuoteTemplate.h"
#include "documents/WordTable.h"

namespace kestrelon {
namespace {

struct QuoteField {
  String name;
  String label;
  String tag;
};

QuoteField ReadField(const Object& node) {
  const auto read = [&](StringView attribute) {
    return NullToString(node.Call(u"getAttribute", attribute));
  };
  QuoteField field{read(u"name"), read(u"label"), read(u"templatetag")};
  if (field.tag.empty()) field.tag = field.label;
  return field;
}

bool IsTag(StringView header) { return header.starts_with(u'<') && header.ends_with(u'>'); }

bool Names(StringView header, const QuoteField& field) {
  if (IsTag(header)) header = header.substr(1, header.size() - 2);
  return !header.empty() &&
         (EqualIgnoringCase(header, field.name) || EqualIgnoringCase(header, field.tag));
}

struct Column {
  int32_t number;
  bool has_tag;  // in its header cell
  QuoteField field;
};

// The columns that a field names; of several such fields the last one.
std::vector<Column> FindColumns(const std::vector<String>& headers, const Object& fields) {
  std::vector<std::optional<QuoteField>> named(headers.size());
  ForEachElement(fields, [&](const Object& node) {
    if (node.Get(u"nodeName").ToText() != u"quotefield") return;
    const QuoteField field = ReadField(node);
    for (size_t i = 1; i < headers.size(); ++i) {
      if (Names(headers[i], field)) named[i] = field;
    }
  });
  std::vector<Column> columns;
  for (size_t i = 1; i < headers.size(); ++i) {
    if (named[i]) columns.push_back({static_cast<int32_t>(i), IsTag(headers[i]), *named[i]});
  }
  return columns;
}

}  // namespace

void FillQuoteTable(const Object& wordTable, const Object& xmlDoc, int16_t lines, String& step) {
  AddRowsFor(wordTable, lines);
  const std::vector<String> headers = ReadHeaderCells(wordTable);
  step = u"Processing in-line table headers";
  const Object fields = xmlDoc.CallChild(u"selectSingleNode", u"Data/quotefields");
  if (!fields) {
    throw AutomationError(kObjectVariableNotSet,
                          u"The quote's data has no element Data/quotefields, which names the "
                          u"fields of its lines. Check what is passed as xmlDoc. ");
  }
  const std::vector<Column> columns = FindColumns(headers, fields.GetChild(u"childNodes"));
  for (int32_t line = 1; line <= lines; ++line) {
    for (const auto& [number, has_tag, field] : columns) {
      const String value =
          GetQuoteRowValue(static_cast<int16_t>(line), xmlDoc, field.name, field.tag);
      CellRange(wordTable, line + 1, number).Put(u"Text", value);
    }
  }
  for (const auto& [number, has_tag, field] : columns) {
    if (!has_tag) continue;
    CellRange(wordTable, 1, number).Put(u"Text", field.label.empty() ? field.name : field.label);
  }
}

}  // namespace kestrelon
