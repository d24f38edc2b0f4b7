#include "desktop/word/package/ElementList.h"

#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <algorithm>
#include <climits>
#include <memory>
#include <new>

#include "desktop/word/package/PackageError.h"

namespace kestrelon::desktop::word {
namespace {

std::string_view View(const xmlChar* text) {
  return text == nullptr ? std::string_view() : reinterpret_cast<const char*>(text);
}

// By its beginning and what it says of itself; the parser checks every character.
bool IsUtf8(std::string_view text) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  const size_t first = text.find_first_not_of(" \t\r\n");
  if (first == std::string_view::npos || text[first] != '<' ||
      text.find('\0') != std::string_view::npos)
    return false;
  if (!text.starts_with("<?xml")) return true;
  const std::string_view declaration = text.substr(0, text.find("?>"));
  const size_t encoding = declaration.find("encoding");
  if (encoding == std::string_view::npos) return true;
  const size_t quote = declaration.find_first_of("\"'", encoding);
  if (quote == std::string_view::npos) return true;
  const std::string_view value = declaration.substr(quote + 1, 5);
  return value == "UTF-8" || value == "utf-8";
}

std::string Escaped(std::string_view value) {
  std::string escaped;
  for (const char c : value) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

}  // namespace

// One pass of the SAX parser over the text, noting where the elements lie.
class ElementList::Reader {
 public:
  Reader(ElementList& list, std::string_view part, std::string_view root, std::string_view space)
      : list_(list), part_(part), root_(root), space_(space) {}

  void Read() {
    const std::string& text = list_.text_;
    if (text.empty() || text.size() > INT_MAX) RefuseXml(part_, "is empty or too long");
    if (!IsUtf8(text)) RefuseXml(part_, "is not encoded as UTF-8");
    context_.reset(xmlCreateMemoryParserCtxt(text.data(), static_cast<int>(text.size())));
    if (context_ == nullptr) throw std::bad_alloc();
    *context_->sax = Handler();
    context_->userData = this;
    // Without a change of encoding the parser stays on our text, and places in it are ours.
    // NOENT only so that "&amp;" arrives decoded; without a DOCTYPE there are no other entities.
    xmlCtxtUseOptions(context_.get(), XML_PARSE_IGNORE_ENC | XML_PARSE_NOENT | XML_PARSE_NONET |
                                          XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
    const int failed = xmlParseDocument(context_.get());
    if (doctype_) RefuseXml(part_, "has a DOCTYPE, which documents may not have");
    if (too_deep_) RefuseXml(part_, "is nested deeper than 256 levels");
    if (failed != 0 || context_->wellFormed == 0) RefuseXml(part_, "is damaged" + Reason());
    if (!right_root_) RefuseXml(part_, "does not hold " + Quoted(root_));
  }

 private:
  struct FreeContext {
    void operator()(xmlParserCtxt* context) const { xmlFreeParserCtxt(context); }
  };

  static xmlSAXHandler Handler() {
    xmlSAXHandler handler{};
    handler.initialized = XML_SAX2_MAGIC;
    handler.startElementNs = [](void* self, const xmlChar* name, const xmlChar* prefix,
                                const xmlChar* space, int, const xmlChar**, int count, int,
                                const xmlChar** attributes) {
      static_cast<Reader*>(self)->Start(name, prefix, space, count, attributes);
    };
    handler.endElementNs = [](void* self, const xmlChar*, const xmlChar*, const xmlChar*) {
      static_cast<Reader*>(self)->End();
    };
    handler.internalSubset = [](void* self, const xmlChar*, const xmlChar*, const xmlChar*) {
      static_cast<Reader*>(self)->Stop(&Reader::doctype_);
    };
    return handler;
  }

  void Stop(bool Reader::*why) {
    this->*why = true;
    xmlStopParser(context_.get());
  }

  // The parser has just read up to here.
  size_t Position() const {
    const xmlParserInput& input = *context_->input;
    return input.consumed + static_cast<size_t>(input.cur - input.base);
  }

  void Start(const xmlChar* name, const xmlChar* prefix, const xmlChar* space, int count,
             const xmlChar** attributes) {
    ++depth_;
    if (depth_ > kDeepestNesting) return Stop(&Reader::too_deep_);
    listed_ = depth_ == 2 && View(space) == space_;
    if (depth_ == 1) {
      right_root_ = View(name) == root_ && View(space) == space_;
      if (prefix != nullptr) list_.prefix_ = std::string(View(prefix)) + ":";
    }
    if (!listed_) return;
    ListElement element;
    element.name = View(name);
    // A "<" cannot stand within a tag: the last one began it.
    element.begin = list_.text_.rfind('<', Position() - 1);
    for (int i = 0; i < count; ++i, attributes += 5) {
      if (attributes[1] != nullptr) continue;  // with a prefix: not one of ours
      element.attributes.emplace_back(View(attributes[0]),
                                      std::string(reinterpret_cast<const char*>(attributes[3]),
                                                  reinterpret_cast<const char*>(attributes[4])));
    }
    list_.elements_.push_back(std::move(element));
  }

  void End() {
    if (depth_ == 2 && listed_) list_.elements_.back().end = Position();
    if (depth_ == 1) list_.root_end_ = Position();
    --depth_;
  }

  std::string Reason() const {
    const xmlError* error = xmlCtxtGetLastError(context_.get());
    if (error == nullptr || error->message == nullptr) return "";
    std::string message = error->message;
    while (!message.empty() && message.back() == '\n') message.pop_back();
    return " at line " + std::to_string(error->line) + " (" + message + ")";
  }

  ElementList& list_;
  std::string_view part_;
  std::string_view root_;
  std::string_view space_;
  std::unique_ptr<xmlParserCtxt, FreeContext> context_;
  int depth_ = 0;
  bool listed_ = false;
  bool right_root_ = false;
  bool doctype_ = false;
  bool too_deep_ = false;
};

const std::string* ListElement::Find(std::string_view attribute) const {
  const auto found =
      std::ranges::find(attributes, attribute, [](const auto& a) { return a.first; });
  return found == attributes.end() ? nullptr : &found->second;
}

ElementList::ElementList(std::string text, std::string_view part, std::string_view root,
                         std::string_view space)
    : text_(std::move(text)) {
  Reader(*this, part, root, space).Read();
}

std::string ElementList::Markup(std::string_view name, const Attributes& attributes) const {
  std::string markup = "<" + prefix_ + std::string(name);
  for (const auto& [key, value] : attributes) {
    markup.append(" ").append(key).append("=\"").append(Escaped(value)).append("\"");
  }
  return markup + "/>";
}

void ElementList::Splice(size_t begin, size_t end, std::string_view markup) {
  text_.replace(begin, end - begin, markup);
  const size_t shift =
      markup.size() - (end - begin);  // wraps when it shrinks, as the sums below do
  for (ListElement& element : elements_) {
    if (element.begin < end) continue;
    element.begin += shift;
    element.end += shift;
  }
  root_end_ += shift;
  changed_ = true;
}

// <Relationships …/> becomes <Relationships …></Relationships>.
void ElementList::OpenRoot() {
  if (text_[root_end_ - 2] != '/') return;
  const size_t begin = text_.rfind('<', root_end_) + 1;
  const std::string name = text_.substr(begin, text_.find_first_of(" \t\r\n/", begin) - begin);
  Splice(root_end_ - 2, root_end_, "></" + name + ">");
}

void ElementList::Append(std::string_view name, const Attributes& attributes) {
  OpenRoot();
  const size_t at = text_.rfind("</", root_end_);
  const std::string markup = Markup(name, attributes);
  Splice(at, at, markup);
  ListElement element{
      .name = std::string(name), .attributes = {}, .begin = at, .end = at + markup.size()};
  element.attributes.assign(attributes.begin(), attributes.end());
  elements_.push_back(std::move(element));
}

void ElementList::Replace(size_t index, const Attributes& attributes) {
  ListElement& element = elements_[index];
  const std::string markup = Markup(element.name, attributes);
  Splice(element.begin, element.end, markup);
  element.end = element.begin + markup.size();
  element.attributes.assign(attributes.begin(), attributes.end());
}

void ElementList::Erase(size_t index) {
  Splice(elements_[index].begin, elements_[index].end, "");
  elements_.erase(elements_.begin() + static_cast<ptrdiff_t>(index));
}

}  // namespace kestrelon::desktop::word
