#include "desktop/converter/HtmlSource.h"

#include <algorithm>
#include <string_view>

#include "automation/Text.h"
#include "desktop/converter/HtmlStyles.h"
#include "desktop/converter/HtmlTags.h"
#include "desktop/locale/UserLocale.h"

namespace kestrelon::desktop {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kCharset = "charset=";

// `<META Name = "Created" …>` as "<metaname=created…>".
std::string Squeeze(std::string_view tag) {
  std::string squeezed;
  for (const char c : tag) {
    if (std::string_view(" \t\r\n\"'").find(c) == std::string_view::npos) {
      squeezed += LowerCaseAscii(c);
    }
  }
  return squeezed;
}

bool Contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

// Whether the office suite stumbles over this tag: it refuses a page for a mark of when it was made
// that has no date, and for most headers of an HTTP answer, and one that loads the page anew keeps
// it busy for ever. None of them is seen on paper.
bool MustGo(std::string_view tag) {
  return Contains(tag, "name=created") || Contains(tag, "name=changed") ||
         (Contains(tag, "http-equiv=") && !Contains(tag, "http-equiv=content-type"));
}

struct Page {
  std::string html;        // without the tags that must go
  std::string charset;     // that it says it has, in lower case; "" without one
  size_t charset_tag = 0;  // where it says so
};

Page ReadMetaTags(std::string_view html) {
  Page page;
  size_t kept = 0;
  for (size_t end = 0; end != std::string_view::npos;) {
    const size_t start = FindTag(html, "<meta", end);
    end = html.find('>', start);
    if (end == std::string_view::npos) break;
    const std::string tag = Squeeze(html.substr(start, ++end - start));
    if (MustGo(tag)) {
      page.html += html.substr(kept, start - kept);
      kept = end;
      continue;
    }
    const size_t at = Contains(tag, "name=") ? std::string::npos : tag.find(kCharset);
    if (page.charset.empty() && at != std::string::npos) {
      const size_t name = at + kCharset.size();
      page.charset_tag = page.html.size() + start - kept;
      page.charset = tag.substr(name, tag.find_first_of("/;>", name) - name);
    }
  }
  page.html += html.substr(kept);
  return page;
}

// Whether the page may be read as UTF-8 or ANSI, whatever it says. What could be read this far is
// no UTF-16; and where a set of ISO 8859 has control characters, which no page holds, the euro sign
// and the quotation marks of ANSI stand.
bool IsUtf8OrAnsi(const Page& page) {
  const std::string& charset = page.charset;
  if (charset.starts_with("iso-8859-")) {
    return std::any_of(page.html.begin(), page.html.end(), [](char c) {
      const auto byte = static_cast<unsigned char>(c);
      return byte >= 0x80 && byte < 0xA0;
    });
  }
  return charset.empty() || charset == "utf-8" || charset == "utf8" || charset == "unicode" ||
         charset.starts_with("utf-16");
}

// What a browser would print where the page has no rules of its own: the user's paper, and no room
// between the lines of a table. (The office suite reads no groups of selectors and no bare zeros.)
std::string DefaultStyle() {
  const PaperSize paper = UserPaper();
  return "<style>@page{size:" + std::to_string(paper.width) + "mm " + std::to_string(paper.height) +
         "mm;margin:20mm}td p{margin-top:0cm;margin-bottom:0cm}"
         "th p{margin-top:0cm;margin-bottom:0cm}</style>";
}

}  // namespace

std::string PrepareHtml(std::string_view html) {
  const bool is_utf16 = html.starts_with("\xFF\xFE") || html.starts_with("\xFE\xFF");
  if (is_utf16) return std::string(html);
  const bool is_marked = html.starts_with(kUtf8Mark);
  if (is_marked) html.remove_prefix(kUtf8Mark.size());
  Page page = ReadMetaTags(SimplifyStyles(html));
  if (!is_marked && !IsUtf8OrAnsi(page)) return DefaultStyle() + page.html;
  if (page.charset != "" && page.charset != "utf-8") {
    // The office suite believes it more than the mark at the start.
    const size_t end = page.html.find('>', page.charset_tag) + 1;
    page.html.erase(page.charset_tag, end - page.charset_tag);
  }
  if (ToUtf8(FromUtf8(page.html)) != page.html) {
    const bool is_mixed = page.charset == "utf-8";
    page.html = ToUtf8(is_mixed ? FromUtf8WithAnsi(page.html) : FromAnsi(page.html));
  }
  return std::string(kUtf8Mark) + DefaultStyle() + page.html;
}

}  // namespace kestrelon::desktop
