#include "desktop/xml/InnerText.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "desktop/xml/HtmlTree.h"
#include "desktop/xml/LibxmlText.h"

namespace kestrelon::desktop {
namespace {

constexpr std::array<std::string_view, 4> kUnseen = {"head", "script", "style", "template"};
constexpr std::array<std::string_view, 33> kBlocks = {
    "address", "article", "aside",    "blockquote", "caption", "center", "dd",   "dir",  "div",
    "dl",      "dt",      "fieldset", "figure",     "footer",  "form",   "h1",   "h2",   "h3",
    "h4",      "h5",      "h6",       "header",     "hr",      "li",     "main", "menu", "nav",
    "ol",      "pre",     "section",  "table",      "tr",      "ul"};

template <size_t Size>
bool Contains(const std::array<std::string_view, Size>& list, std::string_view name) {
  return std::find(list.begin(), list.end(), name) != list.end();
}

// Line breaks that end a block before it and after it.
size_t BreaksAround(const xmlNode& element) {
  if (IsHtmlElement(element, "p")) return 2;
  return Contains(kBlocks, View(element.name)) ? 1 : 0;
}

bool FollowsACell(const xmlNode& cell) {
  const xmlNode* before = cell.prev;
  while (before != nullptr && !IsTableCell(*before)) before = before->prev;
  return before != nullptr;
}

class SeenText {
 public:
  void AddInside(const xmlNode& parent, bool is_kept) {
    for (const xmlNode* child = parent.children; child != nullptr; child = child->next) {
      if (child->type == XML_ELEMENT_NODE) {
        AddElement(*child, is_kept);
      } else if (child->type == XML_TEXT_NODE || child->type == XML_CDATA_SECTION_NODE) {
        AddText(View(child->content), is_kept);
      } else if (child->type == XML_ENTITY_REF_NODE) {
        AddText(View(LibxmlString(xmlNodeGetContent(child)).get()), is_kept);
      }
    }
  }
  String Take() const { return ReplaceAll(FromUtf8(text_), u"\n", u"\r\n"); }

 private:
  void AddElement(const xmlNode& element, bool is_kept) {
    if (Contains(kUnseen, View(element.name))) return;
    if (IsHtmlElement(element, "br")) return Put('\n');
    const size_t breaks = BreaksAround(element);
    breaks_ = std::max(breaks_, breaks);
    if (IsTableCell(element) && FollowsACell(element)) Put('\t');
    AddInside(element, is_kept || IsHtmlElement(element, "pre"));
    breaks_ = std::max(breaks_, breaks);
  }

  void AddText(std::string_view text, bool is_kept) {
    for (const char c : text) {
      const bool is_space = c == ' ' || (c >= '\t' && c <= '\r');
      if (is_kept) {
        if (c != '\r') Put(c);
      } else if (is_space) {
        is_blank_due_ = true;
      } else {
        PutAfterBlank(c);
      }
    }
  }

  void PutAfterBlank(char c) {
    const bool is_blank_seen = is_blank_due_ && breaks_ == 0 && !text_.empty() &&
                               text_.back() != '\n' && text_.back() != '\t';
    if (is_blank_seen) text_ += ' ';
    Put(c);
  }

  // Ends the block before it; white space at the end of a line is not seen.
  void Put(char c) {
    is_blank_due_ = false;
    const size_t breaks_there = text_.size() - 1 - text_.find_last_not_of('\n');
    if (!text_.empty() && breaks_there < breaks_) text_.append(breaks_ - breaks_there, '\n');
    breaks_ = 0;
    text_ += c;
  }

  std::string text_;
  bool is_blank_due_ = false;
  size_t breaks_ = 0;  // due before what comes next
};

}  // namespace

String InnerText(const xmlNode& element) {
  SeenText seen;
  seen.AddInside(element, IsHtmlElement(element, "pre") || IsHtmlElement(element, "textarea"));
  return seen.Take();
}

}  // namespace kestrelon::desktop
