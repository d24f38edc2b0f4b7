#include "desktop/word/html/InsertedFile.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "automation/AutomationError.h"
#include "desktop/storage/AtomicFile.h"
#include "desktop/storage/Paths.h"
#include "desktop/word/html/BlockReader.h"
#include "desktop/word/html/BlockWriter.h"
#include "desktop/word/html/CssValue.h"
#include "desktop/xml/HtmlParser.h"

namespace kestrelon::desktop::word::html {
namespace fs = std::filesystem;
namespace {

constexpr size_t kLargestFile = size_t{64} << 20;

enum class Format { kHtml, kText, kOther };

BlockSource SourceOf(std::vector<Block> blocks) {
  return [blocks = std::make_shared<const std::vector<Block>>(std::move(blocks))](
             const InsertionPlace& place) {
    BlockWriter writer(place);
    writer.Write(*blocks);
    return writer.Take();
  };
}

void CollectRules(const xmlNode& node, StyleSheet& sheet) {
  for (const xmlNode* child = node.children; child != nullptr; child = child->next) {
    if (NameOf(*child) == "style") {
      for (const xmlNode* text = child->children; text != nullptr; text = text->next) {
        if (IsText(*text)) sheet.Add(TextOf(*text));
      }
    } else if (child->type == XML_ELEMENT_NODE) {
      CollectRules(*child, sheet);
    }
  }
}

// A byte order mark decides.
String Decoded(std::string_view bytes) {
  if (bytes.starts_with("\xEF\xBB\xBF")) return FromUtf8(bytes.substr(3));
  const bool big = bytes.starts_with("\xFE\xFF");
  if (big || bytes.starts_with("\xFF\xFE")) {
    String units;
    for (size_t i = 2; i + 1 < bytes.size(); i += 2) {
      const auto low = static_cast<unsigned char>(bytes[big ? i + 1 : i]);
      const auto high = static_cast<unsigned char>(bytes[big ? i : i + 1]);
      units += static_cast<char16_t>(high << 8 | low);
    }
    return units;
  }
  String text = FromUtf8(bytes);
  return ToUtf8(text) == bytes ? text : FromAnsi(bytes);
}

bool LooksLikeHtml(std::string_view bytes) {
  constexpr size_t kHead = 1024;
  constexpr std::array<std::string_view, 6> kMarks = {"<!doctype html", "<html",  "<head",
                                                      "<body",          "<table", "<div"};
  const std::string head = Lower(bytes.substr(0, kHead));
  return std::any_of(kMarks.begin(), kMarks.end(),
                     [&](std::string_view mark) { return head.find(mark) != std::string::npos; });
}

Format FormatOf(const fs::path& path, std::string_view bytes) {
  constexpr std::array<std::string_view, 4> kOthers = {"PK\x03\x04", "\xD0\xCF\x11\xE0", "{\\rtf",
                                                       "%PDF-"};
  const bool is_other = std::any_of(kOthers.begin(), kOthers.end(),
                                    [&](std::string_view mark) { return bytes.starts_with(mark); });
  if (is_other) return Format::kOther;
  const std::string extension = Lower(path.extension().string());
  if (extension == ".htm" || extension == ".html" || extension == ".xhtml") return Format::kHtml;
  if (extension == ".txt") return Format::kText;
  return LooksLikeHtml(bytes) ? Format::kHtml : Format::kOther;
}

}  // namespace

BlockSource BlocksOfHtml(std::string_view bytes) {
  const HtmlMarkup tree = ParseHtml(bytes, u"The HTML file");
  const xmlNode& root = *xmlDocGetRootElement(tree.get());
  Page page;
  CollectRules(root, page.sheet);
  BlockReader reader(page);
  reader.ReadContent(root, StyleOf(root, Inherited(), page.sheet));
  return SourceOf(reader.Take(/*is_cell=*/false));
}

BlockSource BlocksOfText(std::string_view bytes) {
  const String text = ReplaceAll(ReplaceAll(Decoded(bytes), u"\r\n", u"\n"), u"\r", u"\n");
  std::vector<Block> blocks;
  for (const String& line : Split(text, u"\n")) {
    Paragraph paragraph;
    if (!line.empty()) paragraph.runs.push_back({line, {}, nullptr});
    blocks.emplace_back(std::move(paragraph));
  }
  // The end of the last line begins no other.
  if (text.ends_with(u'\n')) blocks.pop_back();
  return SourceOf(std::move(blocks));
}

BlockSource BlocksOfFile(const fs::path& path) {
  const std::string bytes = ReadWholeFile(path, kLargestFile);
  switch (FormatOf(path, bytes)) {
    case Format::kHtml:
      return BlocksOfHtml(bytes);
    case Format::kText:
      return BlocksOfText(bytes);
    case Format::kOther:
      break;
  }
  throw AutomationError(4198, u"Command failed: " + TextFromPath(path) +
                                  u" is neither HTML nor plain text, and nothing else is inserted "
                                  u"here. Save it as .htm or .txt.");
}

}  // namespace kestrelon::desktop::word::html
