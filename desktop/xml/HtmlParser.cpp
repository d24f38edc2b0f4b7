#include "desktop/xml/HtmlParser.h"

#include <libxml/HTMLparser.h>

#include "automation/AutomationError.h"

namespace kestrelon::desktop {
namespace {

struct FreeContext {
  void operator()(htmlParserCtxtPtr context) const { htmlFreeParserCtxt(context); }
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

HtmlMarkup ParseHtml(std::string_view bytes, StringView what) {
  constexpr size_t kLargestInput = size_t{1} << 30;
  if (bytes.size() > kLargestInput) {
    throw AutomationError(kInvalidProcedureCall, String(what) + u" is larger than 1 GiB");
  }
  const std::unique_ptr<xmlParserCtxt, FreeContext> context(htmlNewParserCtxt());
  if (!context) throw AutomationError(kOutOfMemory);
  HtmlMarkup tree(htmlCtxtReadMemory(context.get(), bytes.data(), static_cast<int>(bytes.size()),
                                     nullptr, GuessEncoding(bytes),
                                     HTML_PARSE_RECOVER | HTML_PARSE_NOERROR |
                                         HTML_PARSE_NOWARNING | HTML_PARSE_NONET),
                  xmlFreeDoc);
  const bool was_stopped = context->disableSAX != 0;
  if (was_stopped) {
    throw AutomationError(kInvalidProcedureCall,
                          String(what) + u"'s elements nest deeper than 256");
  }
  if (!tree) throw AutomationError(kOutOfMemory);
  if (xmlDocGetRootElement(tree.get()) == nullptr) {
    const xmlNodePtr root =
        xmlNewDocNode(tree.get(), nullptr, reinterpret_cast<const xmlChar*>("html"), nullptr);
    xmlDocSetRootElement(tree.get(), root);
  }
  return tree;
}

}  // namespace kestrelon::desktop
