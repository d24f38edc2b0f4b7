#include "desktop/word/html/ElementStyle.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "desktop/word/html/CssValue.h"

namespace kestrelon::desktop::word::html {
namespace {

constexpr std::array<std::string_view, 7> kTableParts = {"table", "thead", "tbody", "tfoot",
                                                         "tr",    "td",    "th"};
constexpr size_t kLongestLink = 2000;
constexpr int32_t kDeepestIndent = 7200;

template <size_t Size>
bool IsOneOf(const std::array<std::string_view, Size>& list, std::string_view name) {
  return std::find(list.begin(), list.end(), name) != list.end();
}

Align AlignOf(std::string_view text) {
  const std::string word = Lower(TrimBlanks(text));
  if (word == "left" || word == "start") return Align::kLeft;
  if (word == "center" || word == "middle") return Align::kCenter;
  if (word == "right" || word == "end") return Align::kRight;
  return word == "justify" ? Align::kJustify : Align::kNone;
}

VerticalAlign VerticalAlignOf(std::string_view text) {
  const std::string word = Lower(TrimBlanks(text));
  if (word == "top" || word == "baseline") return VerticalAlign::kTop;
  if (word == "middle" || word == "center") return VerticalAlign::kMiddle;
  return word == "bottom" ? VerticalAlign::kBottom : VerticalAlign::kNone;
}

template <typename T>
void SetIf(T& target, const std::optional<T>& value) {
  if (value) target = *value;
}

class StyleBuilder {
 public:
  StyleBuilder(const xmlNode& element, const Inherited& around)
      : element_(element),
        name_(NameOf(element)),
        around_(around),
        style_{around, {}},
        text_(style_.inherited.text),
        box_(style_.box) {}

  ElementStyle Build(const StyleSheet& sheet) {
    ApplyName();
    ApplyAttributes();
    for (const Declaration* one : sheet.DeclarationsFor(element_)) Apply(one->property, one->value);
    return std::move(style_);
  }

 private:
  // Of the element's text in twips.
  int32_t Em() const { return (text_.half_points == 0 ? kUsualSize : text_.half_points) * 10; }
  int32_t SizeAround() const {
    const int32_t size = around_.text.half_points;
    return size == 0 ? kUsualSize : size;
  }

  void ApplyName() {
    if (ApplyInlineName() || ApplyHeading()) return;
    Inherited& inherited = style_.inherited;
    const auto indent = [&] {
      inherited.indent = std::min(inherited.indent + 600, kDeepestIndent);
    };
    if (name_ == "center") inherited.align = inherited.table_align = Align::kCenter;
    if (name_ == "p" || name_ == "pre") box_.margins[kTop] = box_.margins[kBottom] = Em();
    if (name_ == "blockquote") box_.margins[kTop] = box_.margins[kBottom] = Em();
    if (name_ == "blockquote" || name_ == "ul" || name_ == "ol" || name_ == "dd") indent();
    if (name_ == "ul" || name_ == "ol") inherited.list_style.clear();
    if (name_ == "table") {
      inherited.align = Align::kNone;
      inherited.indent = 0;
      inherited.vertical = VerticalAlign::kMiddle;
      inherited.block_background.reset();
    }
    if (name_ == "th" || name_ == "caption") inherited.align = Align::kCenter;
    if (name_ == "th" || name_ == "dt") text_.bold = true;
    if (name_ == "pre") Preserve();
  }

  bool ApplyHeading() {
    constexpr std::array<int32_t, 6> kSizes = {48, 36, 28, 24, 20, 16};
    if (name_.size() != 2 || name_[0] != 'h' || name_[1] < '1' || name_[1] > '6') return false;
    box_.heading = name_[1] - '0';
    text_.bold = true;
    text_.half_points = kSizes[static_cast<size_t>(box_.heading) - 1];
    box_.margins[kTop] = box_.margins[kBottom] = Em() * 3 / 4;
    return true;
  }

  bool ApplyInlineName() {
    constexpr std::array<std::string_view, 2> kBold = {"b", "strong"};
    constexpr std::array<std::string_view, 6> kItalic = {"i",   "em",  "cite",
                                                         "var", "dfn", "address"};
    constexpr std::array<std::string_view, 2> kUnderline = {"u", "ins"};
    constexpr std::array<std::string_view, 3> kStrike = {"s", "strike", "del"};
    constexpr std::array<std::string_view, 4> kFixed = {"code", "tt", "kbd", "samp"};
    if (IsOneOf(kBold, name_)) return text_.bold = true;
    if (IsOneOf(kItalic, name_)) return text_.italic = true;
    if (IsOneOf(kUnderline, name_)) return text_.underline = true;
    if (IsOneOf(kStrike, name_)) return text_.strike = true;
    if (IsOneOf(kFixed, name_)) {
      text_.font = "Courier New";
    } else if (name_ == "sub" || name_ == "sup") {
      text_.position = name_ == "sub" ? Position::kSubscript : Position::kSuperscript;
    } else if (name_ == "big" || name_ == "small") {
      SetIf(text_.half_points, ParseFontSize(name_ == "big" ? "larger" : "smaller", SizeAround()));
    } else if (name_ == "mark") {
      text_.background = 0xFFFF00;
    } else {
      return false;
    }
    return true;
  }

  void Preserve() {
    style_.inherited.preserves = true;
    text_.font = "Courier New";
  }

  void ApplyAttributes() {
    Inherited& inherited = style_.inherited;
    if (name_ == "font" || name_ == "basefont") ApplyFontAttributes();
    if (name_ == "a" && HasAttribute(element_, "href")) ApplyLink();
    if (const Align align = AlignOf(AttributeOf(element_, "align"));
        align != Align::kNone && name_ != "table" && name_ != "hr" && name_ != "img") {
      inherited.align = align;
      if (!IsOneOf(kTableParts, name_)) inherited.table_align = align;
    }
    if (const VerticalAlign align = VerticalAlignOf(AttributeOf(element_, "valign"));
        align != VerticalAlign::kNone) {
      inherited.vertical = align;
    }
    if (IsOneOf(kTableParts, name_)) {
      SetBackground(ParseColor(AttributeOf(element_, "bgcolor")));
      box_.height = ParseTwips(AttributeOf(element_, "height"), Em()).value_or(0);
    }
    box_.no_wrap = HasAttribute(element_, "nowrap");
    box_.width = ParseLength(AttributeOf(element_, "width"), Em());
    if (HasAttribute(element_, "type")) inherited.list_style = AttributeOf(element_, "type");
    if (name_ == "body") {
      if (const auto color = ParseColor(AttributeOf(element_, "text"))) text_.color = color;
    }
  }

  void ApplyFontAttributes() {
    const std::string family = ParseFontFamily(AttributeOf(element_, "face"));
    if (!family.empty()) text_.font = family;
    SetIf(text_.half_points, ParseFontElementSize(AttributeOf(element_, "size")));
    if (const auto color = ParseColor(AttributeOf(element_, "color"))) text_.color = color;
  }

  void ApplyLink() {
    const std::string_view target = TrimBlanks(AttributeOf(element_, "href"));
    const std::string scheme = Lower(target.substr(0, target.find(':') + 1));
    const bool is_known =
        scheme == "http:" || scheme == "https:" || scheme == "mailto:" || scheme == "ftp:";
    if (!is_known || target.size() > kLongestLink) return;
    style_.inherited.link = std::make_shared<const std::string>(target);
    text_.color = 0x0000FF;
    text_.underline = true;
  }

  // Of a run, a paragraph or a cell.
  void SetBackground(const std::optional<Color>& color) {
    if (!color) return;
    if (IsOneOf(kTableParts, name_)) {
      box_.background = color;
    } else if (IsBlock(name_)) {
      style_.inherited.block_background = color;
    } else {
      text_.background = color;
    }
  }

  void Apply(const std::string& property, const std::string& value) {
    if (ApplyText(property, value) || ApplyBorder(property, value)) return;
    Inherited& inherited = style_.inherited;
    const std::string lower = Lower(value);
    if (property == "text-align") {
      if (const Align align = AlignOf(value); align != Align::kNone) inherited.align = align;
    } else if (property == "vertical-align") {
      ApplyVerticalAlign(lower);
    } else if (property == "background-color" || property == "background") {
      ApplyBackground(value);
    } else if (property == "width") {
      if (const Length width = ParseLength(value, Em()); width.IsSet()) box_.width = width;
    } else if (property == "height") {
      SetIf(box_.height, ParseTwips(value, Em()));
    } else if (property == "white-space") {
      inherited.preserves = lower.starts_with("pre");
      box_.no_wrap = lower == "nowrap" || lower == "pre";
    } else if (property == "display") {
      box_.hidden = lower == "none";
    } else if (property == "table-layout") {
      box_.is_fixed = lower == "fixed";
    } else if (property == "list-style" || property == "list-style-type") {
      inherited.list_style = lower;
    } else if (property.starts_with("padding")) {
      ApplySides(property.substr(7), value, box_.padding);
    } else if (property.starts_with("margin")) {
      ApplyMargins(property.substr(6), value);
    }
  }

  bool ApplyText(const std::string& property, const std::string& value) {
    const std::string lower = Lower(value);
    if (property == "color") {
      if (const auto color = ParseColor(value)) text_.color = color;
    } else if (property == "font-weight") {
      ApplyWeight(lower);
    } else if (property == "font-style") {
      text_.italic = lower == "italic" || lower == "oblique";
    } else if (property == "font-size") {
      SetIf(text_.half_points, ParseFontSize(value, SizeAround()));
    } else if (property == "font-family") {
      if (std::string family = ParseFontFamily(value); !family.empty()) text_.font = family;
    } else if (property == "font") {
      ApplyFont(value);
    } else if (property.starts_with("text-decoration")) {
      if (property.size() > 15 && property != "text-decoration-line") return true;
      text_.underline = lower.find("underline") != std::string::npos;
      text_.strike = lower.find("line-through") != std::string::npos;
    } else if (property == "text-transform") {
      text_.capitals = lower == "uppercase";
    } else {
      return false;
    }
    return true;
  }

  void ApplyWeight(const std::string& lower) {
    const Length number = ParseLength(lower, 0);
    if (lower == "inherit") return;
    text_.bold = lower == "bold" || lower == "bolder" || number.value >= 600 * 15;
  }

  // "italic bold 12px/1.4 Arial, sans-serif": the family follows the size.
  void ApplyFont(const std::string& value) {
    const std::vector<std::string_view> words = Words(value);
    text_.bold = text_.italic = false;
    for (const std::string_view word : words) {
      const std::string lower = Lower(word);
      if (lower == "bold" || lower == "bolder") text_.bold = true;
      if (lower == "italic" || lower == "oblique") text_.italic = true;
      const bool is_weight = lower.size() == 3 && lower.ends_with("00");
      if (is_weight) text_.bold = lower >= "600";
      const auto size =
          is_weight ? std::nullopt : ParseFontSize(lower.substr(0, lower.find('/')), SizeAround());
      if (!size) continue;
      text_.half_points = *size;
      const auto end = static_cast<size_t>(word.data() + word.size() - value.data());
      if (std::string family = ParseFontFamily(std::string_view(value).substr(end));
          !family.empty()) {
        text_.font = family;
      }
      return;
    }
  }

  void ApplyVerticalAlign(const std::string& lower) {
    if (IsOneOf(kTableParts, name_)) {
      const VerticalAlign align = VerticalAlignOf(lower);
      if (align != VerticalAlign::kNone) style_.inherited.vertical = align;
      return;
    }
    if (lower == "sub") text_.position = Position::kSubscript;
    if (lower == "super") text_.position = Position::kSuperscript;
    if (lower == "baseline") text_.position = Position::kBaseline;
  }

  void ApplyBackground(const std::string& value) {
    for (const std::string_view word : Words(value)) {
      if (Lower(word) == "transparent" || Lower(word) == "none") box_.background.reset();
      if (const auto color = ParseColor(word)) return SetBackground(color);
    }
  }

  bool ApplyBorder(const std::string& property, const std::string& value) {
    if (!property.starts_with("border")) return false;
    constexpr std::array<std::string_view, 4> kSides = {"-top", "-right", "-bottom", "-left"};
    const std::string_view rest = std::string_view(property).substr(6);
    size_t side = 0;
    while (side < 4 && !rest.starts_with(kSides[side])) ++side;
    const std::string_view aspect = side == 4 ? rest : rest.substr(kSides[side].size());
    const std::vector<std::string_view> words = Words(value);
    for (size_t i = 0; i < 4; ++i) {
      if ((side != 4 && side != i) || words.empty()) continue;
      // One value for all sides, or two to four in the order of the sides.
      const std::string_view own = words[i < words.size() ? i : i == 3 && words.size() > 1 ? 1 : 0];
      if (aspect.empty()) {
        box_.borders[i] = ParseBorder(value, Em());
      } else {
        SetBorderAspect(box_.borders[i], aspect, own);
      }
    }
    return true;
  }

  void SetBorderAspect(std::optional<Border>& border, std::string_view aspect,
                       std::string_view value) {
    if (aspect == "-color") {
      if (!border) border.emplace();
      border->color = ParseColor(value);
    } else if (aspect == "-style") {
      const auto style = BorderStyle(Lower(value));
      if (!style) return;
      if (!border) border.emplace();
      border->style = *style;
      border->eighths = **style == '\0' ? 0 : std::max(border->eighths, 6);
    } else if (aspect == "-width") {
      const auto drawn = ParseBorder(std::string(value) + " solid", Em());
      if (!border) border.emplace().style = "";
      border->eighths = *border->style == '\0' ? 0 : drawn->eighths;
    }
  }

  void ApplySides(std::string_view which, const std::string& value, Sides<int32_t>& sides) {
    constexpr std::array<std::string_view, 4> kSides = {"-top", "-right", "-bottom", "-left"};
    const std::vector<std::string_view> words = Words(value);
    if (words.empty()) return;
    for (size_t i = 0; i < 4; ++i) {
      if (!which.empty() && which != kSides[i]) continue;
      const size_t word = !which.empty() ? 0 : i < words.size() ? i : i == 3 && words.size() > 1;
      if (const auto twips = ParseTwips(words[word], Em())) sides[i] = twips;
    }
  }

  void ApplyMargins(std::string_view which, const std::string& value) {
    const int32_t before = box_.margins[kLeft].value_or(0);
    box_.own_margins = true;
    box_.auto_margins = box_.auto_margins || Lower(value).find("auto") != std::string::npos;
    ApplySides(which, value, box_.margins);
    const int32_t left = box_.margins[kLeft].value_or(0) - before;
    if (IsBlock(name_) && !IsOneOf(kTableParts, name_)) {
      style_.inherited.indent = std::clamp(style_.inherited.indent + left, 0, kDeepestIndent);
    }
  }

  const xmlNode& element_;
  const std::string_view name_;
  const Inherited& around_;
  ElementStyle style_;
  CharacterStyle& text_;
  Box& box_;
};

}  // namespace

bool IsBlock(std::string_view name) {
  constexpr std::array<std::string_view, 45> kBlocks = {
      "address", "article", "aside", "blockquote", "body",    "caption",  "center", "dd",
      "details", "dir",     "div",   "dl",         "dt",      "fieldset", "figure", "figcaption",
      "footer",  "form",    "h1",    "h2",         "h3",      "h4",       "h5",     "h6",
      "header",  "hr",      "html",  "li",         "legend",  "main",     "menu",   "nav",
      "ol",      "p",       "pre",   "section",    "summary", "table",    "thead",  "tbody",
      "tfoot",   "tr",      "td",    "th",         "ul"};
  return IsOneOf(kBlocks, name);
}

bool IsSkipped(std::string_view name) {
  constexpr std::array<std::string_view, 15> kSkipped = {
      "head",   "script", "style",  "title", "meta",  "link", "base", "template",
      "select", "object", "iframe", "audio", "video", "svg",  "math"};
  return IsOneOf(kSkipped, name);
}

ElementStyle StyleOf(const xmlNode& element, const Inherited& around, const StyleSheet& sheet) {
  return StyleBuilder(element, around).Build(sheet);
}

}  // namespace kestrelon::desktop::word::html
