#include "desktop/xml/HtmlParser.h"

#include <libxml/HTMLparser.h>

#include <cstring>
#include <optional>
#include <string>

#include "automation/AutomationError.h"

namespace kestrelon::desktop {
namespace {

struct FreeContext {
  void operator()(htmlParserCtxtPtr context) const { htmlFreeParserCtxt(context); }
};

// The character set that a page says it has, in lower case; "" for none.
std::string DeclaredCharset(std::string_view bytes) {
  constexpr size_t kHeadLength = 1024;  // a declaration stands in the first KiB
  const std::string head = ToUtf8(LowerCase(FromAnsi(bytes.substr(0, kHeadLength))));
  const size_t word = head.find("charset");
  if (word == std::string::npos) return {};
  const size_t start = head.find_first_not_of("= \t\r\n\"'", word + std::strlen("charset"));
  if (start == std::string::npos) return {};
  return head.substr(start, head.find_first_of(" \t\r\n\"'/;>", start) - start);
}

// The page in UTF-8; nothing where the parser is to find out itself. The parser would end a page at
// a byte that has no place in its character set: scripts put ANSI values into pages of any.
std::optional<std::string> PageAsUtf8(std::string_view bytes) {
  if (bytes.starts_with("\xFE\xFF") || bytes.starts_with("\xFF\xFE")) return std::nullopt;
  const std::string charset = DeclaredCharset(bytes);
  const bool is_utf8 = charset == "utf-8" || charset == "utf8";
  const bool is_ansi = charset == "windows-1252" || charset == "iso-8859-1";
  if (is_ansi) return ToUtf8(FromAnsi(bytes));
  if (!is_utf8 && !charset.empty()) return std::nullopt;
  if (ToUtf8(FromUtf8(bytes)) == bytes) return std::string(bytes);
  return ToUtf8(is_utf8 ? FromUtf8WithAnsi(bytes) : FromAnsi(bytes));
}

bool StartsCondition(std::string_view text) {
  const std::string start = ToUtf8(LowerCase(FromAnsi(text.substr(0, std::strlen("<![endif")))));
  return start.starts_with("<![if") || start.starts_with("<![endif");
}

// What browsers pass over and the parser does not: the "<![if …]>" and "<![endif]>" that word
// processors write are text to it, and at a NUL between elements it ends.
std::string WithoutOddities(std::string page) {
  std::erase(page, '\0');
  std::string clean;
  size_t copied = 0;
  for (size_t at = page.find("<!"); at != std::string::npos; at = page.find("<!", at)) {
    const bool is_comment = page.compare(at, 4, "<!--") == 0;
    const bool is_condition = StartsCondition(std::string_view(page).substr(at));
    const size_t end = page.find(is_comment ? "-->" : ">", at);
    if (end == std::string::npos) break;
    if (is_condition) {
      clean.append(page, copied, at - copied);
      copied = end + 1;
    }
    at = end + 1;
  }
  return copied == 0 ? page : clean.append(page, copied);
}

}  // namespace

HtmlMarkup ParseHtml(std::string_view bytes, StringView what) {
  constexpr size_t kLargestInput = size_t{1} << 30;
  const auto require_size = [&](std::string_view input) {
    if (input.size() <= kLargestInput) return;
    throw AutomationError(kInvalidProcedureCall, String(what) + u" is larger than 1 GiB");
  };
  require_size(bytes);
  std::optional<std::string> utf8 = PageAsUtf8(bytes);
  if (utf8) utf8 = WithoutOddities(*std::move(utf8));
  const std::string_view input = utf8 ? std::string_view(*utf8) : bytes;
  require_size(input);
  const std::unique_ptr<xmlParserCtxt, FreeContext> context(htmlNewParserCtxt());
  if (!context) throw AutomationError(kOutOfMemory);
  const int options =
      HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING | HTML_PARSE_NONET;
  HtmlMarkup tree(htmlCtxtReadMemory(context.get(), input.data(), static_cast<int>(input.size()),
                                     nullptr, utf8 ? "UTF-8" : nullptr,
                                     utf8 ? options | HTML_PARSE_IGNORE_ENC : options),
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
