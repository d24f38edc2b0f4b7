// A page's document, as the browser hands it over.

#include <libxml/HTMLparser.h>
#include <libxml/HTMLtree.h>

#include <memory>

#include "desktop/server/ServerObject.h"
#include "desktop/xml/LibxmlText.h"
#include "desktop/xml/XmlDocuments.h"

namespace kestrelon::desktop {
namespace {

using HtmlTree = std::shared_ptr<xmlDoc>;

struct FreeBuffer {
  void operator()(xmlBufferPtr buffer) const { xmlBufferFree(buffer); }
};
struct FreeContext {
  void operator()(htmlParserCtxtPtr context) const { htmlFreeParserCtxt(context); }
};

class HtmlElement final : public ServerObject<HtmlElement> {
 public:
  HtmlElement(HtmlTree tree, xmlNodePtr node) : tree_(std::move(tree)), node_(node) {}
  static const MemberTable<HtmlElement>& Members() {
    static const MemberTable<HtmlElement> table =
        MemberTable<HtmlElement>(u"HTMLElement").Property(u"outerHTML", &HtmlElement::GetOuterHtml);
    return table;
  }

 private:
  Value GetOuterHtml() {
    const std::unique_ptr<xmlBuffer, FreeBuffer> buffer(xmlBufferCreate());
    const std::unique_ptr<xmlOutputBuffer, decltype(&xmlOutputBufferClose)> output(
        xmlOutputBufferCreateBuffer(buffer.get(), nullptr), xmlOutputBufferClose);
    if (!output) throw AutomationError(kOutOfMemory);
    htmlNodeDumpFormatOutput(output.get(), tree_.get(), node_, "UTF-8", 0);
    xmlOutputBufferFlush(output.get());
    return Text(xmlBufferContent(buffer.get()));
  }

  HtmlTree tree_;
  xmlNodePtr node_;
};

class HtmlPage final : public ServerObject<HtmlPage> {
 public:
  explicit HtmlPage(HtmlTree tree) : tree_(std::move(tree)) {}
  static const MemberTable<HtmlPage>& Members() {
    static const MemberTable<HtmlPage> table =
        MemberTable<HtmlPage>(u"HTMLDocument")
            .Property(u"documentElement", &HtmlPage::GetDocumentElement);
    return table;
  }

 private:
  Value GetDocumentElement() {
    return Object(std::make_shared<HtmlElement>(tree_, xmlDocGetRootElement(tree_.get())));
  }

  HtmlTree tree_;
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
  const HtmlTree tree(
      htmlCtxtReadMemory(
          context.get(), bytes.data(), static_cast<int>(bytes.size()), nullptr,
          GuessEncoding(bytes),
          HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING | HTML_PARSE_NONET),
      xmlFreeDoc);
  const bool was_stopped = context->disableSAX != 0;
  if (was_stopped) {
    throw AutomationError(kInvalidProcedureCall, u"The page's elements nest deeper than 256");
  }
  if (!tree) throw AutomationError(kOutOfMemory);
  if (xmlDocGetRootElement(tree.get()) == nullptr) {
    const xmlNodePtr root =
        xmlNewDocNode(tree.get(), nullptr, reinterpret_cast<const xmlChar*>("html"), nullptr);
    xmlDocSetRootElement(tree.get(), root);
  }
  return Object(std::make_shared<HtmlPage>(tree));
}

}  // namespace kestrelon::desktop
