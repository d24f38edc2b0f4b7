#include "desktop/converter/HtmlSource.h"

#include <algorithm>
#include <string_view>

#include "automation/Text.h"
#include "desktop/locale/UserLocale.h"

namespace kestrelon::desktop {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kMeta = "<meta";
constexpr std::string_view kCharset = "charset=";

char LowerCaseAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool EqualLowerCase(char c, char lower) { return LowerCaseAscii(c) == lower; }

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

struct Page {
  std::string html;     // without the marks of time
  std::string charset;  // that it says it has, in lower case; "" without one
};

Page ReadMetaTags(std::string_view html) {
  Page page;
  size_t kept = 0;
  for (size_t end = 0; end != std::string_view::npos;) {
    const std::string_view rest = html.substr(end);
    const auto tag_start =
        std::search(rest.begin(), rest.end(), kMeta.begin(), kMeta.end(), EqualLowerCase);
    const size_t start = end + static_cast<size_t>(tag_start - rest.begin());
    end = html.find('>', start);
    if (end == std::string_view::npos) break;
    const std::string tag = Squeeze(html.substr(start, ++end - start));
    if (tag.find("name=created") != std::string::npos ||
        tag.find("name=changed") != std::string::npos) {
      page.html += html.substr(kept, start - kept);
      kept = end;
    }
    if (const size_t at = tag.find(kCharset); page.charset.empty() && at != std::string::npos) {
      const size_t name = at + kCharset.size();
      page.charset = tag.substr(name, tag.find_first_of("/;>", name) - name);
    }
  }
  page.html += html.substr(kept);
  return page;
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
  if (html.starts_with(kUtf8Mark)) html.remove_prefix(kUtf8Mark.size());
  auto [prepared, charset] = ReadMetaTags(html);
  const bool is_utf8 = charset.empty() || charset == "utf-8" || charset == "utf8";
  if (!is_utf8) return DefaultStyle() + prepared;
  if (ToUtf8(FromUtf8(prepared)) != prepared) {
    prepared = ToUtf8(charset.empty() ? FromAnsi(prepared) : FromUtf8WithAnsi(prepared));
  }
  return std::string(kUtf8Mark) + DefaultStyle() + prepared;
}

}  // namespace kestrelon::desktop
