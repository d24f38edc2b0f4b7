// A page's document, as the browser hands it over.

#include <memory>
#include <unordered_map>

#include "desktop/xml/HtmlElement.h"
#include "desktop/xml/HtmlParser.h"
#include "desktop/xml/XmlDocuments.h"

namespace kestrelon::desktop {
namespace {

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

}  // namespace

Object ParseHtmlDocument(std::string_view bytes) {
  const auto tree = std::make_shared<HtmlTree>(ParseHtml(bytes, u"The page").release());
  return Object(std::make_shared<HtmlPage>(tree));
}

}  // namespace kestrelon::desktop
