// HTML text with tags, taken apart once and filled many times.
//
// The tags of a field are its template tag and its name, in the text as "&lt;TAG&gt;". What they
// stand for is set by replacing them field by field, each from left to right, which also finds a
// tag that a value has brought along. FillField is that, for one field. Filling a pattern is much
// cheaper and gives the same where no value can do so.
#pragma once

#include <vector>

#include "automation/Text.h"

namespace kestrelon {

// How templates write the tag `name`.
String TagText(StringView name);

// In upper case, either may be "".
struct TaggedField {
  TaggedField(String name_text, String tag_text);

  String name;
  String tag;
  String name_in_text;
  String tag_in_text;
};

// `text` with one field's tags replaced by its value.
String FillField(StringView text, const TaggedField& field, StringView value);

class TagPattern {
 public:
  // Takes `text` apart at the tags of the fields from index `first_field` on; tags of the fields
  // before it are plain text.
  TagPattern(StringView text, const std::vector<TaggedField>& fields, size_t first_field);

  // Whether the text between the tags leaves no tag half open. One that does could be closed by any
  // value ("&lt;A" before a value "B&gt;"), and then the pattern must not be filled.
  bool IsClosed() const { return is_closed_; }
  // Whether a value neither holds a tag nor begins one at its end.
  static bool IsPlainValue(StringView value);

  // Appends the text with `values`, one for every field, in the places of their tags. For a closed
  // pattern and plain values this is what FillField gives for all the fields in turn.
  void AppendFilled(const std::vector<String>& values, String& out) const;

 private:
  struct Place {
    String text_before;
    size_t field;
  };

  std::vector<Place> places_;
  String rest_;
  bool is_closed_ = true;
};

}  // namespace kestrelon
