#include "outlook/SortTable.h"

#include "Control/LocaleAndEnvironment.h"

namespace kestrelon {
namespace {

Object NewDocument(ControlContext& context) {
  return context.platform.CreateObject(u"Msxml2.DOMDocument");
}

Object AddElement(const Object& document, const Object& parent, StringView name) {
  const Object element = document.CallChild(u"createElement", name);
  parent.Call(u"appendChild", element);
  return element;
}

void AddText(const Object& document, const Object& parent, StringView name, const String& text) {
  AddElement(document, parent, name).Put(u"text", text);
}

void AddAttribute(const Object& document, const Object& element, StringView name, StringView text) {
  const Object attribute = document.CallChild(u"createAttribute", name);
  attribute.Put(u"text", text);
  // Not every version of MSXML takes an attribute for a child.
  element.Call(u"setAttributeNode", attribute);
}

Object BuildData(ControlContext& context, const SortTable& table) {
  const Object document = NewDocument(context);
  const Object root = AddElement(document, document, u"SORTROOT");
  for (const SortRow& row : table) {
    const Object item = AddElement(document, root, u"SORTITEM");
    AddText(document, item, u"Param1", row.key);
    AddText(document, item, u"Param2", row.payload);
  }
  return document;
}

// Copies everything, the items of SORTROOT in the order of their Param1.
Object BuildStylesheet(ControlContext& context) {
  const Object document = NewDocument(context);
  const Object sheet = AddElement(document, document, u"xsl:stylesheet");
  AddAttribute(document, sheet, u"xmlns:xsl", u"http://www.w3.org/1999/XSL/Transform");
  AddAttribute(document, sheet, u"version", u"1.0");

  const Object sorting = AddElement(document, sheet, u"xsl:template");
  AddAttribute(document, sorting, u"match", u"SORTROOT");
  const Object items =
      AddElement(document, AddElement(document, sorting, u"xsl:copy"), u"xsl:apply-templates");
  AddAttribute(document, AddElement(document, items, u"xsl:sort"), u"select", u"Param1");

  const Object copying = AddElement(document, sheet, u"xsl:template");
  AddAttribute(document, copying, u"match", u"*");
  AddElement(document, AddElement(document, copying, u"xsl:copy"), u"xsl:apply-templates");
  return document;
}

// The names of a built document get their namespaces by being read again.
Object WriteAndLoad(ControlContext& context, const Object& stylesheet) {
  const String path = GetTheTempPath(context) + u"Kestrelon.xsl";
  const Object files = context.platform.CreateObject(u"Scripting.FileSystemObject");
  const Object stream = files.CallChild(u"CreateTextFile", path, true);
  stream.Call(u"WriteLine", stylesheet.Get(u"xml").ToText());
  stream.Call(u"Close");
  const Object loaded = NewDocument(context);
  loaded.Put(u"async", false);
  loaded.Call(u"load", path);
  return loaded;
}

void ReadBack(const Object& result, SortTable& table) {
  const Object items = result.CallChild(u"selectNodes", u"SORTROOT/SORTITEM");
  table.assign(static_cast<size_t>(items.Get(u"length").ToLong()), SortRow());
  const auto walk = items.Enumerate();
  for (SortRow& row : table) {
    const Object item = walk->Next().value_or(Value()).ToObject();
    row.key = item.CallChild(u"selectSingleNode", u"Param1").Get(u"text").ToText();
    row.payload = item.CallChild(u"selectSingleNode", u"Param2").Get(u"text").ToText();
  }
}

}  // namespace

void SortAlphabetically(ControlContext& context, SortTable& table) {
  Object data = BuildData(context, table);
  const Object stylesheet = WriteAndLoad(context, BuildStylesheet(context));
  const Object result = NewDocument(context);
  data.Call(u"transformNodeToObject", stylesheet, result);
  data.Release();  // two large documents are enough to have at once
  ReadBack(result, table);
}

}  // namespace kestrelon
