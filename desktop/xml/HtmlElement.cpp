#include "desktop/xml/HtmlElement.h"

#include <libxml/HTMLtree.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>

#include "desktop/xml/InnerText.h"
#include "desktop/xml/LibxmlText.h"
#include "desktop/xml/NodeMarkup.h"

namespace kestrelon::desktop {
namespace {

struct FreeBuffer {
  void operator()(xmlBufferPtr buffer) const { xmlBufferFree(buffer); }
};

String AttributeOr(const xmlNode& element, std::string_view name, StringView absent) {
  const xmlAttr* attribute = FindHtmlAttribute(element, name);
  return attribute == nullptr ? String(absent) : HtmlAttributeText(*attribute);
}

void SetAttribute(xmlNode& element, const std::string& name, const std::string& value) {
  xmlSetProp(&element, Chars(name), Chars(value));
}

String TextInside(const xmlNode& node) {
  return Text(LibxmlString(xmlNodeGetContent(&node)).get());
}

// Without white space around it, and with one blank for each run of it inside.
String CollapseWhiteSpace(const String& text) {
  String collapsed;
  bool is_pending = false;
  for (const char16_t unit : text) {
    const bool is_space = unit == u' ' || (unit >= u'\t' && unit <= u'\r');
    if (!is_space && is_pending && !collapsed.empty()) collapsed += u' ';
    if (!is_space) collapsed += unit;
    is_pending = is_space;
  }
  return collapsed;
}

String WithCrLf(const String& text) {
  return ReplaceAll(ReplaceAll(ReplaceAll(text, u"\r\n", u"\n"), u"\r", u"\n"), u"\n", u"\r\n");
}

String OptionValue(const xmlNode& option) {
  const xmlAttr* value = FindHtmlAttribute(option, "value");
  return value == nullptr ? CollapseWhiteSpace(TextInside(option)) : HtmlAttributeText(*value);
}

void CollectOptions(const xmlNode& parent, std::vector<xmlNodePtr>& options) {
  for (xmlNodePtr child = parent.children; child != nullptr; child = child->next) {
    if (IsHtmlElement(*child, "option")) options.push_back(child);
    if (child->type == XML_ELEMENT_NODE) CollectOptions(*child, options);
  }
}

std::vector<xmlNodePtr> OptionsOf(const xmlNode& select) {
  std::vector<xmlNodePtr> options;
  CollectOptions(select, options);
  return options;
}

// A list of one choice shows the last option that is marked, and the first one where none is; a
// list of several choices tells the first.
String SelectValue(const xmlNode& select) {
  const std::vector<xmlNodePtr> options = OptionsOf(select);
  const bool is_multiple = FindHtmlAttribute(select, "multiple") != nullptr;
  const xmlNode* chosen = is_multiple || options.empty() ? nullptr : options.front();
  for (const xmlNode* option : options) {
    if (FindHtmlAttribute(*option, "selected") == nullptr) continue;
    chosen = option;
    if (is_multiple) break;
  }
  return chosen == nullptr ? String() : OptionValue(*chosen);
}

void ChooseOption(const xmlNode& select, const String& value) {
  const std::vector<xmlNodePtr> options = OptionsOf(select);
  const auto chosen = std::find_if(options.begin(), options.end(), [&](xmlNodePtr option) {
    return OptionValue(*option) == value;
  });
  if (chosen == options.end()) {
    throw AutomationError(kInvalidProcedureCall,
                          u"The list has no option with the value \"" + value + u"\"");
  }
  for (const xmlNodePtr option : options) xmlUnsetProp(option, Chars("selected"));
  SetAttribute(**chosen, "selected", "selected");
}

// A line break right behind the tag is no part of the text.
String TextareaValue(const xmlNode& textarea) {
  const String text = WithCrLf(TextInside(textarea));
  return text.starts_with(u"\r\n") ? text.substr(2) : text;
}

void SetTextareaValue(HtmlTree& tree, xmlNode& textarea, const std::string& text) {
  tree.Empty(&textarea);
  xmlNodeAddContent(&textarea, Chars("\n" + text));
}

// How many columns or rows a cell takes.
int32_t SpanOf(const xmlNode& cell, std::string_view attribute, int32_t most) {
  if (!IsTableCell(cell)) throw AutomationError(kMemberNotFound);
  const std::string text = ToUtf8(AttributeOr(cell, attribute, u"1"));
  return static_cast<int32_t>(std::clamp<long>(std::strtol(text.c_str(), nullptr, 10), 1, most));
}

String InputValue(const xmlNode& input) {
  const String type = LowerCase(AttributeOr(input, "type", u"text"));
  const bool is_ticked = type == u"checkbox" || type == u"radio";
  return AttributeOr(input, "value", is_ticked ? u"on" : u"");
}

}  // namespace

const xmlAttr* FindHtmlAttribute(const xmlNode& element, std::string_view name) {
  const xmlAttr* attribute = element.properties;
  while (attribute != nullptr && View(attribute->name) != name) attribute = attribute->next;
  return attribute;
}

String HtmlAttributeText(const xmlAttr& attribute) {
  return TextInside(reinterpret_cast<const xmlNode&>(attribute));
}

const MemberTable<HtmlElement>& HtmlElement::Members() {
  static const MemberTable<HtmlElement> table =
      MemberTable<HtmlElement>(u"HTMLElement")
          .Property(u"id", &HtmlElement::GetId)
          .Property(u"tagName", &HtmlElement::GetTagName)
          .Property(u"innerText", &HtmlElement::GetInnerText)
          .Property(u"outerHTML", &HtmlElement::GetOuterHtml)
          .Property(u"value", &HtmlElement::GetValue, &HtmlElement::PutValue)
          .Property(u"rows", &HtmlElement::GetRows)
          .Property(u"cells", &HtmlElement::GetCells)
          .Property(u"colSpan", &HtmlElement::GetColSpan)
          .Property(u"rowSpan", &HtmlElement::GetRowSpan)
          .Method(u"getAttribute", &HtmlElement::GetAttribute, {u"strAttributeName"})
          .Method(u"getElementsByTagName", &HtmlElement::GetElementsByTagName, {u"v"});
  return table;
}

Value HtmlElement::GetId() { return AttributeOr(*node_, "id", u""); }

Value HtmlElement::GetTagName() { return UpperCase(Text(node_->name)); }

Value HtmlElement::GetInnerText() { return InnerText(*node_); }

Value HtmlElement::GetOuterHtml() {
  const std::unique_ptr<xmlBuffer, FreeBuffer> buffer(xmlBufferCreate());
  const std::unique_ptr<xmlOutputBuffer, decltype(&xmlOutputBufferClose)> output(
      xmlOutputBufferCreateBuffer(buffer.get(), nullptr), xmlOutputBufferClose);
  if (!output) throw AutomationError(kOutOfMemory);
  htmlNodeDumpFormatOutput(output.get(), tree_->document(), node_, "UTF-8", 0);
  xmlOutputBufferFlush(output.get());
  return Text(xmlBufferContent(buffer.get()));
}

Value HtmlElement::GetAttribute(const MethodArguments& arguments) {
  const String name = LowerCase(arguments.Require(0).ToText());
  const xmlAttr* attribute = FindHtmlAttribute(*node_, ToUtf8(name));
  if (attribute == nullptr) return Value::Null{};
  return HtmlAttributeText(*attribute);
}

Value HtmlElement::GetElementsByTagName(const MethodArguments& arguments) {
  return ElementsByTagName(tree_, node_, arguments.Require(0));
}

Value HtmlElement::GetRows() {
  const bool has_rows = IsHtmlElement(*node_, "table") || IsHtmlElement(*node_, "thead") ||
                        IsHtmlElement(*node_, "tbody") || IsHtmlElement(*node_, "tfoot");
  if (!has_rows) throw AutomationError(kMemberNotFound);
  return Object(std::make_shared<HtmlCollection>(tree_, tree_->RowsOf(node_)));
}

Value HtmlElement::GetCells() {
  if (!IsHtmlElement(*node_, "tr")) throw AutomationError(kMemberNotFound);
  return Object(std::make_shared<HtmlCollection>(tree_, tree_->CellsOf(node_)));
}

Value HtmlElement::GetColSpan() { return SpanOf(*node_, "colspan", 1000); }

Value HtmlElement::GetRowSpan() { return SpanOf(*node_, "rowspan", 65534); }

Value HtmlElement::GetValue() {
  if (IsHtmlElement(*node_, "input")) return InputValue(*node_);
  if (IsHtmlElement(*node_, "select")) return SelectValue(*node_);
  if (IsHtmlElement(*node_, "textarea")) return TextareaValue(*node_);
  if (IsHtmlElement(*node_, "option")) return OptionValue(*node_);
  if (IsHtmlElement(*node_, "button")) return AttributeOr(*node_, "value", u"");
  throw AutomationError(kMemberNotFound);
}

void HtmlElement::PutValue(const Value& value) {
  if (IsHtmlElement(*node_, "select")) return ChooseOption(*node_, value.ToText());
  const std::string text = CheckedContent(value);
  if (IsHtmlElement(*node_, "textarea")) return SetTextareaValue(*tree_, *node_, text);
  GetValue();  // error 438 where there is none
  SetAttribute(*node_, "value", text);
}

const MemberTable<HtmlCollection>& HtmlCollection::Members() {
  static const MemberTable<HtmlCollection> table =
      MemberTable<HtmlCollection>(u"HTMLElementCollection")
          .Property(u"length", &HtmlCollection::GetLength)
          .Method(u"item", &HtmlCollection::Item, {u"index"})
          .Method(u"", &HtmlCollection::Item, {u"index"});
  return table;
}

std::unique_ptr<Enumerator> HtmlCollection::Enumerate() {
  std::vector<Value> elements;
  for (size_t i = 0; i < elements_->size(); ++i) elements.emplace_back(At(i));
  return std::make_unique<VectorEnumerator>(std::move(elements));
}

Value HtmlCollection::Item(const MethodArguments& arguments) {
  const int32_t index = arguments.Require(0).ToLong();
  return index < 0 ? Object() : At(static_cast<size_t>(index));
}

Object HtmlCollection::At(size_t index) const {
  if (index >= elements_->size()) return nullptr;
  return Object(std::make_shared<HtmlElement>(tree_, (*elements_)[index]));
}

Object ElementsByTagName(const HtmlTreePointer& tree, xmlNodePtr top, const Value& name) {
  const std::string tag = ToUtf8(LowerCase(name.ToText()));
  return Object(std::make_shared<HtmlCollection>(tree, tree->ByTagName(top, tag)));
}

}  // namespace kestrelon::desktop
