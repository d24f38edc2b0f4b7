#include "documents/QuoteTemplate.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

#include "Control/ErrorReporting.h"
#include "Control/FileAccess.h"
#include "documents/NodeList.h"
#include "documents/QuoteServices.h"
#include "documents/TagPattern.h"

namespace kestrelon {
namespace {

constexpr StringView kRowStart = u"<!-- QuoteRowStart -->";
constexpr StringView kRowEnd = u"<!-- QuoteRowEnd -->";
constexpr StringView kGroupStart = u"<!-- QuoteGroupStart -->";
constexpr StringView kGroupEnd = u"<!-- QuoteGroupEnd -->";
constexpr StringView kTagOpening = u"&lt;";
constexpr StringView kTagClosing = u"&gt;";
constexpr const char16_t* kRowsPath = u"Data/quoterows";
constexpr const char16_t* kFieldsPath = u"Data/quotefields";

// The value of the group before the first line, so that this always opens one.
constexpr const char16_t* kNoGroup = u"£$($()%*()*()";

// Positions count from 1; 0 is nowhere.
int64_t PositionOf(StringView text, StringView find) {
  const size_t index = text.find(find);
  return index == StringView::npos ? 0 : static_cast<int64_t>(index) + 1;
}

// What stands from `position` on. Error 5 for nowhere.
StringView From(StringView text, int64_t position) {
  if (position < 1) throw AutomationError(kInvalidProcedureCall);
  return text.substr(std::min(static_cast<size_t>(position - 1), text.size()));
}

struct Sections {
  String head;
  String row_pattern;
  String group_pattern;
  String group_tag;
  bool grouping = false;
  String tail;
};

void FindGroup(ControlContext& context, StringView text, Sections& sections) {
  const int64_t start = PositionOf(text, kGroupStart);
  if (start == 0) return;
  const StringView pattern = From(text, start);
  // NOTE: the last character of the end marker is not part of the header. A browser takes the row's
  // start marker, which follows, as the rest of the comment.
  sections.group_pattern = Left(pattern, PositionOf(pattern, kGroupEnd) + 20);
  const int64_t opening = PositionOf(sections.group_pattern, kTagOpening);
  if (opening == 0) {
    return ShowMessage(context, u"The html template group line is incorrect");
  }
  const StringView inside =
      From(sections.group_pattern, opening + static_cast<int64_t>(kTagOpening.size()));
  sections.group_tag = Left(inside, PositionOf(inside, kTagClosing) - 1);
  sections.grouping = true;
}

Sections FindSections(ControlContext& context, StringView text) {
  Sections sections;
  const StringView rows = From(text, PositionOf(text, kRowStart));
  // The end marker and the character behind it belong to the row.
  sections.row_pattern = Left(rows, PositionOf(rows, kRowEnd) + 20);
  FindGroup(context, text, sections);
  sections.head = Left(text, PositionOf(text, kRowStart) - 1);
  // NOTE: two characters behind the last end marker are left out: the line break that the sections
  // stood on, where lines end in CR LF.
  sections.tail = sections.grouping ? From(text, PositionOf(text, kGroupEnd) + 24)
                                    : From(text, PositionOf(text, kRowEnd) + 22);
  return sections;
}

TaggedField ReadField(const Object& node) {
  // Comments and texts are no fields.
  if (!IsElement(node)) throw AutomationError(kTypeMismatch);
  String name = UpperCase(node.Call(u"getAttribute", u"name").ToText());
  String tag = NullToString(node.Call(u"getAttribute", u"templatetag"));
  if (tag.empty()) tag = NullToString(node.Call(u"getAttribute", u"label"));
  return {std::move(name), UpperCase(tag)};
}

// The fields are those of the document, whichever line they are asked for: read once, they are not
// asked for each line again.
std::vector<TaggedField> ReadFields(const Object& xmlDoc) {
  const Object nodes = xmlDoc.CallChild(u"selectSingleNode", kFieldsPath).GetChild(u"childNodes");
  const int32_t count = nodes.Get(u"length").ToLong();
  std::vector<TaggedField> fields;
  for (int32_t f = 0; f < count; ++f) fields.push_back(ReadField(nodes.CallChild(u"item", f)));
  return fields;
}

// The names of a field's attributes on a line.
struct LineAttributes {
  explicit LineAttributes(const TaggedField& field) : LineAttributes(field.name, field.tag) {}
  LineAttributes(StringView field_name, StringView tag_name)
      : name(LowerCase(field_name)), tag(LowerCase(tag_name)) {}

  String name;
  String tag;
};

String ReadLineValue(const Object& line, const LineAttributes& attributes) {
  if (attributes.name.empty()) return {};
  String value = NullToString(line.Call(u"getAttribute", attributes.name));
  if (value.empty() && !attributes.tag.empty()) {
    value = NullToString(line.Call(u"getAttribute", attributes.tag));
  }
  return value;
}

// Fills the row for one line after the other, with a header before each line that opens a group.
class LineWriter {
 public:
  LineWriter(const Sections& sections, const std::vector<TaggedField>& fields)
      : sections_(sections),
        fields_(fields),
        row_(sections.row_pattern, fields, 0),
        is_closed_(row_.IsClosed()) {
    for (size_t f = 0; f < fields.size(); ++f) {
      if (!IsGroupField(fields[f])) continue;
      // The fields before it have been replaced when the header comes.
      group_fields_.push_back({f, TagPattern(sections.group_pattern, fields, f)});
      is_closed_ = is_closed_ && group_fields_.back().header.IsClosed();
    }
  }

  // `values` are one for each field.
  void Append(const std::vector<String>& values, String& out) {
    std::vector<bool> opens_group(fields_.size(), false);
    for (const GroupField& group : group_fields_) {
      opens_group[group.field] = OpensGroup(values[group.field]);
    }
    if (!is_closed_ || !std::all_of(values.begin(), values.end(), TagPattern::IsPlainValue)) {
      out.append(FillFieldByField(values, opens_group));
      return;
    }
    // Each header goes before all that is there, so that the last one is the first.
    for (auto group = group_fields_.rbegin(); group != group_fields_.rend(); ++group) {
      if (opens_group[group->field]) group->header.AppendFilled(values, out);
    }
    row_.AppendFilled(values, out);
  }

 private:
  struct GroupField {
    size_t field;
    TagPattern header;
  };

  bool IsGroupField(const TaggedField& field) const {
    const String tag = UpperCase(sections_.group_tag);
    return sections_.grouping && (tag == field.tag || tag == field.name);
  }

  bool OpensGroup(const String& value) {
    const String group = std::exchange(group_, UpperCase(value));
    return group != group_;
  }

  String FillFieldByField(const std::vector<String>& values,
                          const std::vector<bool>& opens_group) const {
    String row = sections_.row_pattern;
    for (size_t f = 0; f < fields_.size(); ++f) {
      if (opens_group[f]) row = FillField(sections_.group_pattern, fields_[f], values[f]) + row;
      row = FillField(row, fields_[f], values[f]);
    }
    return row;
  }

  const Sections& sections_;
  const std::vector<TaggedField>& fields_;
  TagPattern row_;
  bool is_closed_;
  std::vector<GroupField> group_fields_;
  String group_ = kNoGroup;  // of the line before, in upper case
};

void AppendLines(const Sections& sections, const Object& xmlDoc, const Object& lines, int32_t count,
                 String& out) {
  // The counter of the lines is a 16-bit one.
  if (count > std::numeric_limits<int16_t>::max()) throw AutomationError(kOverflow);
  const std::vector<TaggedField> fields = ReadFields(xmlDoc);
  const std::vector<LineAttributes> attributes(fields.begin(), fields.end());
  LineWriter writer(sections, fields);
  std::vector<String> values(fields.size());
  // Somewhat more than what comes as a rule, so that a long text need not be moved to grow.
  out.reserve(out.size() + sections.row_pattern.size() * static_cast<size_t>(count) / 4 * 5);
  for (int32_t i = 0; i < count; ++i) {
    // Asked for once and not for each value: it is the same line for all fields.
    Object line;
    IgnoreFailures([&] { line = lines.CallChild(u"item", i); });
    for (size_t f = 0; f < fields.size(); ++f) {
      String value;
      IgnoreFailures([&] { value = ReadLineValue(line, attributes[f]); });
      values[f] = TextToHtml(std::move(value));
    }
    writer.Append(values, out);
  }
}

}  // namespace

void ExpandQuoteTemplate(ControlContext& context, const String& path, const Object& xmlDoc) {
  const Sections sections = FindSections(context, ReadTextFile(context, path));
  const Object rows = xmlDoc.CallChild(u"selectSingleNode", kRowsPath);
  const Object lines = rows ? rows.GetChild(u"childNodes") : Object();
  const int32_t count = lines ? lines.Get(u"length").ToLong() : 0;
  // NOTE: a quote without lines is no quote, and the template stays as it is.
  if (count == 0) throw AutomationError(kSubscriptOutOfRange);
  String output = sections.head;
  AppendLines(sections, xmlDoc, lines, count, output);
  output.append(sections.tail);
  RewriteTextFile(context, path, EncodeBeyondAnsi(std::move(output)));
}

String GetQuoteRowValue(int16_t line, const Object& xmlDoc, const String& field_name,
                        const String& tag) {
  if (field_name.empty()) return {};
  String value;
  IgnoreFailures([&] {
    const Object lines = xmlDoc.CallChild(u"selectSingleNode", kRowsPath).GetChild(u"childNodes");
    value = ReadLineValue(lines.CallChild(u"item", line - 1), {field_name, tag});
  });
  return value;
}

}  // namespace kestrelon
