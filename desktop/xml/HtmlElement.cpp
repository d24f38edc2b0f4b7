#include "desktop/xml/HtmlElement.h"

#include <libxml/HTMLtree.h>

#include <algorithm>
#include <string>

#include "desktop/xml/LibxmlText.h"
#include "desktop/xml/NodeMarkup.h"

namespace kestrelon::desktop {
namespace {

struct FreeBuffer {
  void operator()(xmlBufferPtr buffer) const { xmlBufferFree(buffer); }
};

bool IsTag(const xmlNode& node, std::string_view name) {
  return node.type == XML_ELEMENT_NODE && View(node.name) == name;
}

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
    if (IsTag(*child, "option")) options.push_back(child);
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

void SetTextareaValue(xmlNode& textarea, const std::string& text) {
  xmlNodeSetContent(&textarea, nullptr);
  xmlNodeAddContent(&textarea, Chars("\n" + text));
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
          .Method(u"getAttribute", &HtmlElement::GetAttribute, {u"strAttributeName"});
  return table;
}

Value HtmlElement::GetId() { return AttributeOr(*node_, "id", u""); }

Value HtmlElement::GetTagName() { return UpperCase(Text(node_->name)); }

Value HtmlElement::GetInnerText() { return TextInside(*node_); }

Value HtmlElement::GetOuterHtml() {
  const std::unique_ptr<xmlBuffer, FreeBuffer> buffer(xmlBufferCreate());
  const std::unique_ptr<xmlOutputBuffer, decltype(&xmlOutputBufferClose)> output(
      xmlOutputBufferCreateBuffer(buffer.get(), nullptr), xmlOutputBufferClose);
  if (!output) throw AutomationError(kOutOfMemory);
  htmlNodeDumpFormatOutput(output.get(), tree_.get(), node_, "UTF-8", 0);
  xmlOutputBufferFlush(output.get());
  return Text(xmlBufferContent(buffer.get()));
}

Value HtmlElement::GetAttribute(const MethodArguments& arguments) {
  const String name = LowerCase(arguments.Require(0).ToText());
  const xmlAttr* attribute = FindHtmlAttribute(*node_, ToUtf8(name));
  if (attribute == nullptr) return Value::Null{};
  return HtmlAttributeText(*attribute);
}

Value HtmlElement::GetValue() {
  if (IsTag(*node_, "input")) return InputValue(*node_);
  if (IsTag(*node_, "select")) return SelectValue(*node_);
  if (IsTag(*node_, "textarea")) return TextareaValue(*node_);
  if (IsTag(*node_, "option")) return OptionValue(*node_);
  if (IsTag(*node_, "button")) return AttributeOr(*node_, "value", u"");
  throw AutomationError(kMemberNotFound);
}

void HtmlElement::PutValue(const Value& value) {
  if (IsTag(*node_, "select")) return ChooseOption(*node_, value.ToText());
  const std::string text = CheckedContent(value);
  if (IsTag(*node_, "textarea")) return SetTextareaValue(*node_, text);
  GetValue();  // error 438 where there is none
  SetAttribute(*node_, "value", text);
}

}  // namespace kestrelon::desktop
