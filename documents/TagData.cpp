#include "documents/TagData.h"

#include <limits>
#include <unordered_map>

#include "Control/ErrorReporting.h"
#include "documents/NodeList.h"

namespace kestrelon {
namespace {

constexpr StringView kLabelTag = u"[label]";

// The value rows of a record, found by field name: always the first row of a name. The rows are
// read in their order and only as far as a search needs, so that many fields cost one walk.
class ValueRows {
 public:
  explicit ValueRows(Object holder) : holder_(std::move(holder)) {}

  // Nothing when there is no such row; an absent name matches no row.
  Object Find(const Value& field_name) {
    const Object nodes = holder_.GetChild(u"childNodes");
    if (field_name.IsNull()) return nullptr;
    const String name = field_name.ToText();
    const auto known = rows_.find(name);
    if (known != rows_.end()) return known->second;
    const int32_t count = nodes.Get(u"length").ToLong();
    while (next_ < count) {
      const Object row = nodes.CallChild(u"item", next_++);
      if (!IsElement(row)) continue;
      const Value row_name = row.Call(u"getAttribute", u"fieldname");
      if (row_name.IsNull()) continue;
      const auto [entry, is_first] = rows_.emplace(row_name.ToText(), row);
      if (is_first && entry->first == name) return row;
    }
    return nullptr;
  }

 private:
  Object holder_;
  int32_t next_ = 0;
  std::unordered_map<String, Object> rows_;
};

// Writes entries into the tag table from index 0 upward.
class TagTableWriter {
 public:
  TagTableWriter(TagTable& table, size_t upper_bound) : table_(table) { table_.Reset(upper_bound); }

  void Add(const String& tag, const String& field_name, const String& value) {
    table_.GrowTo(static_cast<size_t>(counter_));
    table_.TagFieldNames[counter_] = field_name;
    table_.Tags[counter_] = u"<" + tag + u">";
    table_.TagReplacements[counter_] = value;
    // The counter is a 16-bit one.
    if (counter_ == std::numeric_limits<int16_t>::max()) throw AutomationError(kOverflow);
    ++counter_;
  }

 private:
  TagTable& table_;
  int16_t counter_ = 0;
};

size_t CountChildren(const Object& node) {
  return static_cast<size_t>(node.GetChild(u"childNodes").Get(u"length").ToLong());
}

// The primary tag of a field: its own, or its caption where the tag is left to the caption.
String ResolvePrimaryTag(const Object& field) {
  const String tag = GetNodeAttribute(field, u"templatetag");
  if (!tag.empty() && tag != kLabelTag) return tag;
  // NOTE: only a caption that is present and empty gives way to the name. A field without a caption
  // has no primary tag, so that a page can leave fields out of templates.
  const bool label_is_empty = LooselyEqual(field.Call(u"getAttribute", u"label"), Value(u""));
  return GetNodeAttribute(field, label_is_empty ? u"name" : u"label");
}

String ResolveAlternateRecordTag(const Object& field) {
  const String tag = GetNodeAttribute(field, u"templatetag2");
  if (tag != kLabelTag) return tag;
  const String label = GetNodeAttribute(field, u"label");
  return label.empty() ? GetNodeAttribute(field, u"name") : label;
}

void ExtractFields(TagTable& table, const Object& xmlDoc, String& step) {
  step = u"Setting root node";
  const Object root = xmlDoc.CallChild(u"selectSingleNode", u"Data");
  ValueRows rows(xmlDoc.CallChild(u"selectSingleNode", u"Data/Data"));
  TagTableWriter writer(table, CountChildren(root));
  ForEachElement(root.GetChild(u"childNodes"), [&](const Object& field) {
    if (field.Get(u"nodeName").ToText() != u"field") return;
    step = u"Retrieving template tag";
    const String primary = ResolvePrimaryTag(field);
    step = u"Retrieving data for tag " + primary;
    String value;
    const Object row = rows.Find(field.Call(u"getAttribute", u"name"));
    // Read directly: a value keeps its pound signs as the page sent them.
    if (row) value = row.Call(u"getAttribute", u"value").ToText();
    step = u"Setting up tag and value array for tag " + primary;
    if (!primary.empty()) writer.Add(primary, GetNodeAttribute(field, u"name"), value);
    step = u"Setting up alternate tag and value array for tag " + primary;
    const String alternate = GetNodeAttribute(field, u"templatetag2");
    if (!alternate.empty()) writer.Add(alternate, GetNodeAttribute(field, u"name"), value);
  });
}

}  // namespace

String GetNodeAttribute(const Object& node, StringView attribute_name) {
  const Object attributes = node.GetChild(u"attributes");
  const int32_t count = attributes.Get(u"length").ToLong();
  for (int32_t i = 0; i < count; ++i) {
    const Object attribute = attributes.CallChild(u"item", i);
    if (attribute.Get(u"nodeName").ToText() != attribute_name) continue;
    // A pound sign that reached the XML as UTF-8 read as ANSI.
    return ReplaceAll(attribute.Get(u"nodeValue").ToText(), u"\u00C2\u00A3", u"\u00A3");
  }
  return {};
}

String CleanCellText(StringView text) {
  String cleaned(text);
  for (char16_t& unit : cleaned) {
    if (AnsiCode(unit) < 32) unit = u' ';
  }
  return Trim(cleaned);
}

void ExtractTagData(ControlContext& context, const Object& xmlDoc) {
  String step;
  Attempt([&] { ExtractFields(context.state.tag_table, xmlDoc, step); },
          [&](const AutomationError& error) {
            ShowMessage(context,
                        u"Error in ExtractTagData - " + error.description() + u" at step " + step);
          });
}

void ExtractRecordTagData(ControlContext& context, const Object& xmlDoc) {
  const Object root = xmlDoc.CallChild(u"selectSingleNode", u"/record");
  ValueRows rows(xmlDoc.CallChild(u"selectSingleNode", u"/record/Data"));
  TagTableWriter writer(context.state.tag_table, CountChildren(root));
  // NOTE: the value is not cleared between fields: one without a value row repeats the last value,
  // which templates use to set one value under several names.
  String value;
  const auto add = [&](const Object& field, const String& tag) {
    if (tag.empty()) return;
    const Object row = rows.Find(field.Call(u"getAttribute", u"name"));
    if (row) {
      value = GetNodeAttribute(row, u"displayvalue");
      if (value.empty()) value = GetNodeAttribute(row, u"value");
    }
    writer.Add(tag, GetNodeAttribute(field, u"name"), value);
  };
  ForEachElement(root.GetChild(u"childNodes"), [&](const Object& field) {
    if (field.Get(u"nodeName").ToText() != u"field") return;
    add(field, ResolvePrimaryTag(field));
    add(field, ResolveAlternateRecordTag(field));
  });
}

}  // namespace kestrelon
