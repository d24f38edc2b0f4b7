// A page's document, as the browser hands it over.

#include <libxml/HTMLparser.h>

#include <memory>
#include <unordered_map>

#include "desktop/xml/HtmlElement.h"
#include "desktop/xml/XmlDocuments.h"

namespace kestrelon::desktop {
namespace {

struct FreeContext {
  void operator()(htmlParserCtxtPtr context) const { htmlFreeParserCtxt(context); }
};

class HtmlPage final : public ServerObject<HtmlPage> {
 public:
  explicit HtmlPage(HtmlTreePointer tree) : tree_(std::move(tree)) {}
  static const MemberTable<HtmlPage>& Members() {
    static const MemberTable<HtmlPage> table =
        MemberTable<HtmlPage>(u"HTMLDocument")
            .Property(u"documentElement", &HtmlPage::GetDocumentElement)
            .Method(u"getElementById", &HtmlPage::GetElementById, {u"v"})
            .Method(u"getElementsByTagName", &HtmlPage::GetElementsByTagName, {u"v"});
    return table;
  }

 private:
  Value GetDocumentElement() { return Wrap(Root()); }

  // Nothing when no element has the id; of several, the first in the page.
  Value GetElementById(const MethodArguments& arguments) {
    if (elements_.empty()) IndexElements(Root());
    const String id = arguments.Require(0).ToText();
    const auto found = id.empty() ? elements_.end() : elements_.find(id);
    return found == elements_.end() ? Object() : Wrap(found->second);
  }

  Value GetElementsByTagName(const MethodArguments& arguments) {
    const auto document = reinterpret_cast<xmlNodePtr>(tree_->document());
    return ElementsByTagName(tree_, document, arguments.Require(0));
  }

  xmlNodePtr Root() const { return xmlDocGetRootElement(tree_->document()); }

  Object Wrap(xmlNodePtr node) { return Object(std::make_shared<HtmlElement>(tree_, node)); }

  void IndexElements(xmlNodePtr node) {
    if (node->type != XML_ELEMENT_NODE) return;
    const xmlAttr* id = FindHtmlAttribute(*node, "id");
    if (id != nullptr) elements_.try_emplace(HtmlAttributeText(*id), node);
    for (xmlNodePtr child = node->children; child != nullptr; child = child->next) {
      IndexElements(child);
    }
  }

  HtmlTreePointer tree_;
  std::unordered_map<String, xmlNodePtr> elements_;  // by id, filled on first use
};

bool DeclaresEncoding(std::string_view bytes) {
  constexpr size_t kHeadLength = 1024;  // a declaration stands in the first KiB
  if (bytes.starts_with("\xFE\xFF") || bytes.starts_with("\xFF\xFE")) return true;
  const String head = LowerCase(FromAnsi(bytes.substr(0, kHeadLength)));
  return head.find(u"charset") != String::npos;
}

const char* GuessEncoding(std::string_view bytes) {
  if (DeclaresEncoding(bytes)) return nullptr;
  const bool is_utf8 = ToUtf8(FromUtf8(bytes)) == bytes;
  return is_utf8 ? "UTF-8" : "windows-1252";
}

}  // namespace

Object ParseHtmlDocument(std::string_view bytes) {
  constexpr size_t kLargestInput = size_t{1} << 30;
  if (bytes.size() > kLargestInput) {
    throw AutomationError(kInvalidProcedureCall, u"The page is larger than 1 GiB");
  }
  const std::unique_ptr<xmlParserCtxt, FreeContext> context(htmlNewParserCtxt());
  if (!context) throw AutomationError(kOutOfMemory);
  const auto tree = std::make_shared<HtmlTree>(htmlCtxtReadMemory(
      context.get(), bytes.data(), static_cast<int>(bytes.size()), nullptr, GuessEncoding(bytes),
      HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING | HTML_PARSE_NONET));
  const bool was_stopped = context->disableSAX != 0;
  if (was_stopped) {
    throw AutomationError(kInvalidProcedureCall, u"The page's elements nest deeper than 256");
  }
  const xmlDocPtr document = tree->document();
  if (document == nullptr) throw AutomationError(kOutOfMemory);
  if (xmlDocGetRootElement(document) == nullptr) {
    const xmlNodePtr root =
        xmlNewDocNode(document, nullptr, reinterpret_cast<const xmlChar*>("html"), nullptr);
    xmlDocSetRootElement(document, root);
  }
  return Object(std::make_shared<HtmlPage>(tree));
}

}  // namespace kestrelon::desktop
