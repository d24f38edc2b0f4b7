#include "desktop/word/xml/XmlReader.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "automation/Text.h"
#include "desktop/word/package/PackageError.h"
#include "desktop/word/xml/XmlText.h"

namespace kestrelon::desktop::word {
namespace {

constexpr size_t kDeepest = 256;
// With room for what may be added to a part.
constexpr size_t kLargestPart = size_t{1} << 30;
constexpr size_t kMostNodes = size_t{1} << 24;

enum CharacterClass : uint8_t { kBlank = 1, kEndsName = 2 };

constexpr std::array<uint8_t, 256> MakeClasses() {
  std::array<uint8_t, 256> classes{};
  for (const char c : {' ', '\t', '\r', '\n'}) classes[static_cast<size_t>(c)] = kBlank | kEndsName;
  for (const char c : {'<', '>', '/', '=', '"', '\'', '&', '!', '?', ';', '\0'}) {
    classes[static_cast<size_t>(c)] = kEndsName;
  }
  return classes;
}

constexpr std::array<uint8_t, 256> kClasses = MakeClasses();

bool Is(char c, CharacterClass of) { return (kClasses[static_cast<unsigned char>(c)] & of) != 0; }

// The inside of these is read for its form alone.
bool IsLeaf(Name name, Name parent) {
  return name == Name::kText || name == Name::kFieldCode ||
         (name == Name::kRunProperties && parent == Name::kRun);
}

// UTF-16 as UTF-8; the declaration, which would name the wrong encoding, is left out.
std::string FromUtf16(std::string_view bytes, bool big_endian) {
  String units;
  for (size_t i = 2; i + 1 < bytes.size(); i += 2) {
    const auto low = static_cast<unsigned char>(bytes[big_endian ? i + 1 : i]);
    const auto high = static_cast<unsigned char>(bytes[big_endian ? i : i + 1]);
    units += static_cast<char16_t>(high << 8 | low);
  }
  if (units.starts_with(u"<?xml ")) units.erase(0, units.find(u"?>") + 2);
  return ToUtf8(units);
}

}  // namespace

void XmlReader::Fail(std::string_view what) const {
  RefusePackage("its part " + Quoted(part_) + " " + std::string(what) + " (at byte " +
                std::to_string(at_) + ")");
}

NodeId XmlReader::Read() {
  if (tree_.source_.size() > kLargestPart) Fail("is too large");
  TakeEncoding();
  text_ = tree_.source_;
  // A guess from what word processors write; saves most of the regrowth and wastes little.
  tree_.nodes_.reserve(text_.size() / 32 + 16);
  tree_.nodes_.emplace_back();
  CheckDeclaration();
  ReadAll();
  return root_;
}

void XmlReader::TakeEncoding() {
  std::string& source = tree_.source_;
  if (source.starts_with("\xFE\xFF")) source = FromUtf16(source, true);
  if (source.starts_with("\xFF\xFE")) source = FromUtf16(source, false);
}

void XmlReader::CheckDeclaration() {
  if (text_.starts_with("\xEF\xBB\xBF")) at_ = 3;
  if (!text_.substr(at_).starts_with("<?xml ")) return;
  const std::string_view declaration = text_.substr(at_, text_.find("?>", at_) - at_);
  const size_t encoding = declaration.find("encoding");
  if (encoding == std::string_view::npos) return;
  const std::string value(declaration.substr(encoding));
  const bool known =
      EqualIgnoringCase(FromUtf8(value.substr(value.find_first_of("\"'") + 1, 5)), u"utf-8") ||
      value.find("ascii") != std::string::npos || value.find("ASCII") != std::string::npos;
  if (!known) Fail("is in an encoding other than UTF-8 and UTF-16");
}

void XmlReader::ReadAll() {
  at_ = 0;
  while (at_ < text_.size()) {
    if (text_[at_] != '<' || at_ + 1 == text_.size() || text_[at_ + 1] == '!' ||
        text_[at_ + 1] == '?') {
      ReadGap();
    } else if (text_[at_ + 1] == '/') {
      ReadEndTag();
    } else {
      ReadStartTag();
    }
  }
  if (!open_names_.empty()) Fail("ends before its elements do");
  if (root_ == kNoNode) Fail("holds no element");
}

// Characters, comments, instructions and CDATA sections up to the next tag.
void XmlReader::ReadGap() {
  const size_t begin = at_;
  bool characters = false;
  while (at_ < text_.size()) {
    if (text_[at_] != '<') {
      const size_t end = std::min(text_.find('<', at_), text_.size());
      characters = characters || text_.substr(at_, end - at_).find_first_not_of(" \t\r\n") !=
                                     std::string_view::npos;
      at_ = end;
      continue;
    }
    const std::string_view rest = text_.substr(at_);
    if (rest.starts_with("<!--")) {
      SkipComment();
    } else if (rest.starts_with("<![CDATA[")) {
      characters = true;
      const size_t end = text_.find("]]>", at_);
      if (end == std::string_view::npos) Fail("has an unfinished CDATA section");
      at_ = end + 3;
    } else if (rest.starts_with("<?")) {
      SkipInstruction();
    } else if (rest.starts_with("<!")) {
      Fail(rest.starts_with("<!DOCTYPE") ? "has a DOCTYPE, which documents must not have"
                                         : "has markup that is not known");
    } else {
      break;
    }
  }
  const bool is_mark = begin == 0 && text_.starts_with("\xEF\xBB\xBF");
  if (characters && open_names_.empty() && !is_mark) Fail("has text outside its root element");
  if (leaf_depth_ == 0) {
    const NodeId gap = Append(Name::kGap, begin);
    tree_.nodes_[gap].open_length = static_cast<uint32_t>(at_ - begin);
  }
}

void XmlReader::SkipComment() {
  const size_t end = text_.find("--", at_ + 4);
  if (end == std::string_view::npos || text_.substr(end, 3) != "-->") Fail("has a broken comment");
  at_ = end + 3;
}

void XmlReader::SkipInstruction() {
  const size_t end = text_.find("?>", at_);
  if (end == std::string_view::npos) Fail("has an unfinished instruction");
  at_ = end + 2;
}

void XmlReader::ReadStartTag() {
  if (open_names_.empty() && root_ != kNoNode) Fail("has more than one root element");
  if (open_names_.size() == kDeepest) Fail("nests its elements deeper than 256");
  const size_t begin = at_++;
  const std::string_view name = ReadName();
  open_names_.push_back(name);
  const bool empty = ReadAttributes();
  if (leaf_depth_ == 0) {
    const Name known = Resolve(name);
    const NodeId node = Append(known, begin);
    tree_.nodes_[node].open_length = static_cast<uint32_t>(at_ - begin);
    if (root_ == kNoNode) root_ = node;
    current_ = node;
    if (IsLeaf(known, tree_.name(tree_.parent(node)))) leaf_depth_ = open_names_.size();
  }
  if (!empty) return;
  if (leaf_depth_ == 0 || leaf_depth_ == open_names_.size()) {
    tree_.nodes_[current_].close = static_cast<uint32_t>(at_);
  }
  CloseElement();
}

void XmlReader::ReadEndTag() {
  const size_t begin = at_;
  at_ += 2;
  if (open_names_.empty()) Fail("has an end tag without a start tag");
  const std::string_view name = open_names_.back();
  if (text_.substr(at_, name.size()) != name) Fail("has an end tag that does not match");
  at_ += name.size();
  SkipBlanks();
  if (at_ == text_.size() || text_[at_] != '>') Fail("has an end tag that does not match");
  ++at_;
  if (leaf_depth_ == 0 || leaf_depth_ == open_names_.size()) {
    tree_.nodes_[current_].close = static_cast<uint32_t>(begin);
    tree_.nodes_[current_].close_length = static_cast<uint32_t>(at_ - begin);
  }
  CloseElement();
}

void XmlReader::CloseElement() {
  const size_t depth = open_names_.size();
  while (!bindings_.empty() && bindings_.back().depth == depth) {
    bindings_.pop_back();
    last_is_known_ = false;
  }
  if (leaf_depth_ == 0 || leaf_depth_ == depth) {
    current_ = tree_.nodes_[current_].parent;
    leaf_depth_ = 0;
  }
  open_names_.pop_back();
}

std::string_view XmlReader::ReadName() {
  const size_t begin = at_;
  while (at_ < text_.size() && !Is(text_[at_], kEndsName)) ++at_;
  if (at_ == begin) Fail("has a tag without a name");
  return text_.substr(begin, at_ - begin);
}

void XmlReader::SkipBlanks() {
  while (at_ < text_.size() && Is(text_[at_], kBlank)) ++at_;
}

bool XmlReader::ReadAttributes() {
  attributes_.clear();
  while (true) {
    const size_t before = at_;
    SkipBlanks();
    if (at_ == text_.size()) Fail("ends within a tag");
    if (text_[at_] == '>') {
      ++at_;
      return false;
    }
    if (text_[at_] == '/') {
      if (text_.substr(at_, 2) != "/>") Fail("has a broken tag");
      at_ += 2;
      return true;
    }
    if (at_ == before) Fail("has attributes that nothing separates");
    ReadAttribute();
  }
}

void XmlReader::ReadAttribute() {
  const std::string_view name = ReadName();
  if (std::find(attributes_.begin(), attributes_.end(), name) != attributes_.end()) {
    Fail("has an attribute twice");
  }
  attributes_.push_back(name);
  SkipBlanks();
  if (at_ == text_.size() || text_[at_] != '=') Fail("has an attribute without a value");
  ++at_;
  SkipBlanks();
  if (at_ == text_.size() || (text_[at_] != '"' && text_[at_] != '\'')) {
    Fail("has an attribute without a value");
  }
  const size_t begin = at_ + 1;
  const size_t end = text_.find(text_[at_], begin);
  if (end == std::string_view::npos) Fail("has an unfinished attribute");
  const std::string_view value = text_.substr(begin, end - begin);
  if (value.find('<') != std::string_view::npos) Fail("has a \"<\" in an attribute");
  at_ = end + 1;
  if (name == "xmlns") Declare({}, value);
  if (name.starts_with("xmlns:")) Declare(name.substr(6), value);
}

void XmlReader::Declare(std::string_view prefix, std::string_view uri) {
  bindings_.push_back({prefix, NamespaceOfUri(uri), open_names_.size()});
  last_is_known_ = false;
}

Name XmlReader::Resolve(std::string_view qualified) {
  const size_t colon = qualified.find(':');
  if (colon == std::string_view::npos) return FindName(Find({}), qualified);
  return FindName(Find(qualified.substr(0, colon)), qualified.substr(colon + 1));
}

// Nearly all elements have the prefix of the one before them.
Namespace XmlReader::Find(std::string_view prefix) {
  if (last_is_known_ && prefix == last_prefix_) return last_namespace_;
  last_prefix_ = prefix;
  last_namespace_ = Namespace::kOther;
  last_is_known_ = true;
  for (size_t i = bindings_.size(); i-- > 0;) {
    if (bindings_[i].prefix == prefix) {
      last_namespace_ = bindings_[i].ns;
      return last_namespace_;
    }
  }
  return last_namespace_;
}

NodeId XmlReader::Append(Name name, size_t open) {
  if (tree_.nodes_.size() == kMostNodes) Fail("has too many elements");
  const auto id = static_cast<NodeId>(tree_.nodes_.size());
  XmlNode& node = tree_.nodes_.emplace_back();
  XmlNode& parent = tree_.nodes_[current_];
  node.name = name;
  node.open = static_cast<uint32_t>(open);
  node.parent = current_;
  node.previous = parent.last_child;
  if (parent.last_child != kNoNode) {
    tree_.nodes_[parent.last_child].next = id;
  } else {
    parent.first_child = id;
  }
  parent.last_child = id;
  return id;
}

}  // namespace kestrelon::desktop::word
