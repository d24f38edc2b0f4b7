#include "desktop/outlook/mail/HtmlText.h"

#include <libxml/HTMLparser.h>

#include <algorithm>
#include <array>
#include <limits>
#include <memory>

namespace kestrelon::desktop {
namespace {

constexpr size_t kLongestHead = 65536;
constexpr std::array<std::string_view, 4> kHidden = {"script", "style", "template", "title"};
constexpr std::array<std::string_view, 9> kParagraphs = {"p",  "h1", "h2",  "h3",        "h4",
                                                         "h5", "h6", "pre", "blockquote"};
constexpr std::array<std::string_view, 22> kLines = {
    "address",  "article", "body",  "center", "dd", "div",    "dl",   "dt",
    "fieldset", "footer",  "form",  "header", "hr", "li",     "main", "nav",
    "ol",       "section", "table", "tr",     "ul", "caption"};

template <size_t size>
bool IsOneOf(std::string_view name, const std::array<std::string_view, size>& names) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

std::string FoldAscii(std::string_view text) {
  std::string folded(text);
  for (char& byte : folded) {
    if (byte >= 'A' && byte <= 'Z') byte = static_cast<char>(byte + ('a' - 'A'));
  }
  return folded;
}

// Takes the page's events. Breaks and blanks wait until more text comes, so that none stand at the
// start or the end.
class PlainText {
 public:
  void Start(std::string_view name) {
    if (IsOneOf(name, kHidden)) ++hidden_;
    if (name == "pre") ++preformatted_;
    BreakFor(name);
    // An empty cell of a word processor holds a break, which parts nothing.
    if (name == "br" && !at_cell_start_) ++breaks_;
    if (name == "li") Add("* ");
    if (IsCell(name)) {
      if (breaks_ == 0 && !text_.empty()) Add("\t");
      at_cell_start_ = true;
    }
  }

  void End(std::string_view name) {
    if (IsOneOf(name, kHidden) && hidden_ > 0) --hidden_;
    if (name == "pre" && preformatted_ > 0) --preformatted_;
    BreakFor(name);
    if (IsCell(name)) {
      if (!at_cell_start_) breaks_ = 0;
      at_cell_start_ = false;
    }
  }

  void Characters(std::string_view characters) {
    if (hidden_ > 0) return;
    while (!characters.empty()) {
      const size_t blank = std::min(characters.find_first_of(" \t\r\n\f"), characters.size());
      if (blank > 0) Add(characters.substr(0, blank));
      if (blank == characters.size()) return;
      AddBlank(characters[blank]);
      characters.remove_prefix(blank + 1);
    }
  }

  std::string Take() {
    // Blanks that a browser would not break or collapse; they have done that duty.
    constexpr std::string_view kNoBreakSpace = "\xC2\xA0";
    std::string text;
    text.reserve(text_.size());
    std::string_view rest = text_;
    for (size_t at = 0; (at = rest.find(kNoBreakSpace)) != std::string_view::npos;) {
      text.append(rest.substr(0, at)).append(" ");
      rest.remove_prefix(at + kNoBreakSpace.size());
    }
    return text.append(rest);
  }

 private:
  static bool IsCell(std::string_view name) { return name == "td" || name == "th"; }

  // Paragraphs part a cell's lines from one another, not from its neighbours.
  void BreakFor(std::string_view name) {
    if (at_cell_start_) return;
    if (IsOneOf(name, kParagraphs)) breaks_ = std::max(breaks_, 2);
    if (IsOneOf(name, kLines)) breaks_ = std::max(breaks_, 1);
  }

  void AddBlank(char blank) {
    if (preformatted_ == 0) {
      waiting_blank_ = true;
    } else if (blank == '\n') {
      ++breaks_;
    } else if (blank != '\r') {
      Add(std::string_view(&blank, 1));
    }
  }

  void Add(std::string_view text) {
    const bool at_line_start = text_.empty() || breaks_ > 0 || text_.ends_with('\t') || after_mark_;
    if (!text_.empty()) text_.append(static_cast<size_t>(breaks_), '\n');
    if (waiting_blank_ && !at_line_start && text != "\t") text_ += ' ';
    text_ += text;
    after_mark_ = text == "* ";
    at_cell_start_ = false;
    breaks_ = 0;
    waiting_blank_ = false;
  }

  std::string text_;
  int breaks_ = 0;
  bool waiting_blank_ = false;
  bool after_mark_ = false;
  bool at_cell_start_ = false;
  int hidden_ = 0;
  int preformatted_ = 0;
};

// Without the conditional marks of word processors (<![if …]>), which the parser takes for text.
// Those within comments go with their comment.
std::string WithoutConditionals(std::string_view html) {
  std::string kept;
  kept.reserve(html.size());
  size_t from = 0;
  for (size_t at = html.find("<!"); at != std::string_view::npos; at = html.find("<!", at)) {
    const std::string_view rest = html.substr(at);
    if (!rest.starts_with("<![")) {
      at = rest.starts_with("<!--") ? html.find("-->", at) : at + 1;
      continue;
    }
    const size_t end = html.find("]>", at);
    if (end == std::string_view::npos) break;
    kept.append(html.substr(from, at - from));
    at = from = end + 2;
  }
  return kept.append(html.substr(from));
}

PlainText& Target(void* target) { return *static_cast<PlainText*>(target); }
std::string_view View(const xmlChar* text) { return reinterpret_cast<const char*>(text); }

void OnStart(void* target, const xmlChar* name, const xmlChar**) {
  Target(target).Start(View(name));
}
void OnEnd(void* target, const xmlChar* name) { Target(target).End(View(name)); }
void OnCharacters(void* target, const xmlChar* text, int length) {
  Target(target).Characters({reinterpret_cast<const char*>(text), static_cast<size_t>(length)});
}

struct FreeContext {
  void operator()(htmlParserCtxtPtr context) const {
    xmlFreeDoc(context->myDoc);
    htmlFreeParserCtxt(context);
  }
};

}  // namespace

std::string HtmlToPlainText(std::string_view html) {
  const std::unique_ptr<xmlParserCtxt, FreeContext> context(htmlNewParserCtxt());
  if (!context) throw std::bad_alloc();
  const std::string page = WithoutConditionals(html);
  PlainText text;
  *context->sax = {};
  context->sax->startElement = OnStart;
  context->sax->endElement = OnEnd;
  context->sax->characters = OnCharacters;
  context->userData = &text;
  const size_t size = std::min<size_t>(page.size(), std::numeric_limits<int>::max());
  htmlCtxtReadMemory(
      context.get(), page.data(), static_cast<int>(size), nullptr, "UTF-8",
      HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING | HTML_PARSE_NONET | HTML_PARSE_IGNORE_ENC);
  return text.Take();
}

std::string DeclareUtf8(std::string_view html) {
  std::string declared;
  size_t copied = 0;
  // Declarations stand in the head of a page; a body of megabytes need not be searched.
  const std::string folded = FoldAscii(html.substr(0, std::min(html.find("<body"), kLongestHead)));
  for (size_t meta = folded.find("<meta"); meta != std::string::npos;
       meta = folded.find("<meta", meta + 1)) {
    const size_t end = folded.find('>', meta);
    size_t value = folded.find("charset", meta);
    if (value == std::string::npos || value > end) continue;
    value = folded.find_first_not_of(" =\"'", value + std::string_view("charset").size());
    const size_t value_end = folded.find_first_of(" \"';/>", value);
    if (value_end == std::string::npos) break;
    declared.append(html, copied, value - copied).append("utf-8");
    copied = value_end;
  }
  return declared.append(html, copied);
}

}  // namespace kestrelon::desktop
