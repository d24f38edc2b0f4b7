#include "desktop/word/xml/XmlTree.h"

#include <algorithm>

#include "desktop/word/xml/XmlReader.h"
#include "desktop/word/xml/XmlText.h"

namespace kestrelon::desktop::word {
namespace {

// Parts are at most 256 MiB, so the upper half of the offsets is free.
constexpr uint32_t kAdded = uint32_t{1} << 31;

constexpr std::string_view kBlanks = " \t\r\n";

struct AttributeText {
  std::string_view whole;  // with the blanks before it
  std::string_view name;
  std::string_view raw_value;
};

// Walks over the attributes of a start tag that has been read, so that it is well-formed.
class AttributeWalk {
 public:
  explicit AttributeWalk(std::string_view tag)
      : tag_(tag), at_(std::min(tag.find_first_of(" \t\r\n/>", 1), tag.size())) {}

  std::optional<AttributeText> Next() {
    const size_t begin = at_;
    const size_t name = tag_.find_first_not_of(kBlanks, at_);
    if (name == std::string_view::npos || tag_[name] == '/' || tag_[name] == '>') return {};
    const size_t name_end = tag_.find_first_of("= \t\r\n", name);
    const size_t quote = tag_.find_first_of("\"'", name_end);
    const size_t end = tag_.find(tag_[quote], quote + 1);
    at_ = end + 1;
    return AttributeText{tag_.substr(begin, at_ - begin), tag_.substr(name, name_end - name),
                         tag_.substr(quote + 1, end - quote - 1)};
  }
  // What follows the last attribute.
  std::string_view Rest() const { return tag_.substr(at_); }

 private:
  std::string_view tag_;
  size_t at_;
};

std::string_view LocalName(std::string_view name) {
  const size_t colon = name.find(':');
  return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

bool IsDeclaration(std::string_view name) { return name.starts_with("xmlns"); }

// Of an element that has not changed.
uint32_t Size(const XmlNode& node) {
  return node.name == Name::kGap ? node.open_length : node.close + node.close_length - node.open;
}

std::string_view TagName(std::string_view open_tag) {
  size_t end = 1;
  while (open_tag[end] > ' ' && open_tag[end] != '/' && open_tag[end] != '>') ++end;
  return open_tag.substr(1, end - 1);
}

}  // namespace

XmlTree::XmlTree(std::string source, std::string_view part) : source_(std::move(source)) {
  root_ = XmlReader(*this, part).Read();
}

NodeId XmlTree::Child(NodeId node, Name name) const {
  NodeId child = nodes_[node].first_child;
  while (child != kNoNode && nodes_[child].name != name) child = nodes_[child].next;
  return child;
}

bool XmlTree::IsAttached(NodeId node) const {
  while (nodes_[node].parent != kNoNode) node = nodes_[node].parent;
  return node == root_;
}

size_t XmlTree::DepthOf(NodeId node) const {
  size_t depth = 0;
  for (; node != kNoNode; node = nodes_[node].parent) ++depth;
  return depth;
}

std::string_view XmlTree::Bytes(uint32_t offset, uint32_t length) const {
  const std::string_view all = offset < kAdded ? source_ : added_;
  return all.substr(offset & (kAdded - 1), length);
}

uint32_t XmlTree::AddBytes(std::string_view bytes) {
  const auto offset = static_cast<uint32_t>(added_.size());
  added_ += bytes;
  return kAdded | offset;
}

std::string_view XmlTree::OpenTag(NodeId node) const {
  return Bytes(nodes_[node].open, nodes_[node].open_length);
}

std::string_view XmlTree::LeafContent(NodeId node) const {
  const XmlNode& leaf = nodes_[node];
  const uint32_t begin = leaf.open + leaf.open_length;
  return Bytes(begin, leaf.close - begin);
}

std::string_view XmlTree::Prefix(NodeId node) const {
  const std::string_view name = TagName(OpenTag(node));
  return name.substr(0, name.size() - LocalName(name).size());
}

std::optional<std::string> XmlTree::Attribute(NodeId node, std::string_view local) const {
  AttributeWalk walk(OpenTag(node));
  while (const auto attribute = walk.Next()) {
    if (LocalName(attribute->name) == local && !IsDeclaration(attribute->name)) {
      return DecodeXmlAttribute(attribute->raw_value);
    }
  }
  return std::nullopt;
}

NodeId XmlTree::ChildNamed(NodeId node, std::string_view local) const {
  NodeId child = nodes_[node].first_child;
  while (child != kNoNode &&
         (name(child) == Name::kGap || LocalName(TagName(OpenTag(child))) != local)) {
    child = nodes_[child].next;
  }
  return child;
}

std::optional<std::string> XmlTree::DeclaredUri(NodeId node, std::string_view prefix) const {
  const std::string wanted =
      prefix.empty() ? "xmlns" : std::string("xmlns:").append(prefix.substr(0, prefix.size() - 1));
  for (; node != kNoNode; node = nodes_[node].parent) {
    AttributeWalk walk(OpenTag(node));
    while (const auto attribute = walk.Next()) {
      if (attribute->name == wanted) return DecodeXmlAttribute(attribute->raw_value);
    }
  }
  return std::nullopt;
}

std::string XmlTree::NamespaceOf(NodeId node) const {
  return DeclaredUri(node, Prefix(node)).value_or("");
}

// As attributes; the innermost of each prefix.
std::string XmlTree::DeclarationsAround(NodeId node) const {
  std::string declarations;
  std::vector<std::string_view> seen;
  for (; node != kNoNode; node = nodes_[node].parent) {
    AttributeWalk walk(OpenTag(node));
    while (const auto attribute = walk.Next()) {
      const bool is_new = std::find(seen.begin(), seen.end(), attribute->name) == seen.end();
      if (!IsDeclaration(attribute->name) || !is_new) continue;
      seen.push_back(attribute->name);
      declarations += attribute->whole;
    }
  }
  return declarations;
}

std::string XmlTree::OpenTagWithout(NodeId node,
                                    std::initializer_list<std::string_view> locals) const {
  const std::string_view tag = OpenTag(node);
  std::string without(tag.substr(0, TagName(tag).size() + 1));
  AttributeWalk walk(tag);
  while (const auto attribute = walk.Next()) {
    const bool dropped =
        std::find(locals.begin(), locals.end(), LocalName(attribute->name)) != locals.end();
    if (!dropped || IsDeclaration(attribute->name)) without += attribute->whole;
  }
  without += walk.Rest();
  return without;
}

void XmlTree::AppendTo(NodeId node, std::string& bytes) const {
  const XmlNode& element = nodes_[node];
  if (!element.changed) {
    bytes += Bytes(element.open, Size(element));
    return;
  }
  bytes += OpenTag(node);
  for (NodeId child = element.first_child; child != kNoNode; child = nodes_[child].next) {
    AppendTo(child, bytes);
  }
  bytes += Bytes(element.close, element.close_length);
}

std::string XmlTree::Write() const {
  std::string bytes;
  bytes.reserve(source_.size() + added_.size() + shared_);
  for (NodeId child = nodes_[0].first_child; child != kNoNode; child = nodes_[child].next) {
    AppendTo(child, bytes);
  }
  return bytes;
}

NodeId XmlTree::NewLeaf(Name name, std::string_view markup) {
  nodes_.emplace_back().name = name;
  const auto node = static_cast<NodeId>(nodes_.size() - 1);
  SetLeaf(node, markup);
  return node;
}

NodeId XmlTree::NewElement(Name name, std::string_view open_tag, std::string_view close_tag) {
  XmlNode& node = nodes_.emplace_back();
  node.name = name;
  node.open = AddBytes(open_tag);
  node.open_length = static_cast<uint32_t>(open_tag.size());
  node.close = AddBytes(close_tag);
  node.close_length = static_cast<uint32_t>(close_tag.size());
  return static_cast<NodeId>(nodes_.size() - 1);
}

std::string XmlTree::EnsurePrefix(NodeId node) {
  const std::string own(Prefix(node));
  if (!own.empty()) return own;
  const std::string uri = NamespaceOf(node);
  for (NodeId around = node; around != kNoNode; around = nodes_[around].parent) {
    AttributeWalk walk(OpenTag(around));
    while (const auto attribute = walk.Next()) {
      if (!attribute->name.starts_with("xmlns:")) continue;
      const std::string prefix = std::string(LocalName(attribute->name)) + ":";
      if (DeclaredUri(node, prefix) == uri) return prefix;
    }
  }
  std::string prefix = "w";
  while (source_.find("xmlns:" + prefix) != std::string::npos) prefix += 'w';
  std::string tag(OpenTag(root_));
  tag.insert(TagName(tag).size() + 1, " xmlns:" + prefix + "=\"" + uri + "\"");
  nodes_[root_].open = AddBytes(tag);
  nodes_[root_].open_length = static_cast<uint32_t>(tag.size());
  MarkChanged(root_);
  return prefix + ":";
}

XmlTree::Fragment XmlTree::NewElements(NodeId parent, std::string_view markup) {
  std::string wrapped = "<f" + DeclarationsAround(parent) + ">";
  wrapped.append(markup).append("</f>");
  const XmlTree read(std::move(wrapped), "of what is inserted");
  Fragment fragment = {{}, 0};
  // Ids and offsets go on where those of this tree end.
  const auto first = static_cast<NodeId>(nodes_.size()) - (read.root_ + 1);
  const uint32_t bytes = AddBytes(read.source_);
  const auto moved = [&](NodeId node) { return node > read.root_ ? node + first : kNoNode; };
  std::vector<size_t> depths(read.nodes_.size());
  for (NodeId id = read.root_ + 1; id < read.nodes_.size(); ++id) {
    XmlNode node = read.nodes_[id];
    if (node.parent == read.root_ && node.name != Name::kGap)
      fragment.elements.push_back(id + first);
    depths[id] = depths[node.parent] + 1;
    fragment.height = std::max(fragment.height, depths[id]);
    for (NodeId* link :
         {&node.parent, &node.previous, &node.next, &node.first_child, &node.last_child}) {
      *link = moved(*link);
    }
    if (node.parent == kNoNode) node.previous = node.next = kNoNode;
    node.open += bytes;
    node.close += bytes;
    nodes_.push_back(node);
  }
  return fragment;
}

NodeId XmlTree::NewEmptyLike(NodeId node) {
  const std::string open = OpenTagWithout(node, {"paraId", "textId"});
  const std::string_view tag = open;
  const std::string start =
      tag.ends_with("/>") ? std::string(tag.substr(0, tag.size() - 2)) + ">" : open;
  const std::string end = "</" + std::string(TagName(tag)) + ">";
  return NewElement(name(node), start, end);
}

NodeId XmlTree::CopyOf(NodeId node) {
  if (nodes_[node].changed) {
    std::string bytes;
    AppendTo(node, bytes);
    return NewLeaf(nodes_[node].name, bytes);
  }
  XmlNode copy = nodes_[node];
  shared_ += Size(copy);
  copy.parent = copy.previous = copy.next = copy.first_child = copy.last_child = kNoNode;
  nodes_.push_back(copy);
  return static_cast<NodeId>(nodes_.size() - 1);
}

void XmlTree::Insert(NodeId parent, NodeId next, NodeId node) {
  OpenUp(parent);
  const NodeId previous = next == kNoNode ? nodes_[parent].last_child : nodes_[next].previous;
  XmlNode& inserted = nodes_[node];
  inserted.parent = parent;
  inserted.previous = previous;
  inserted.next = next;
  (previous == kNoNode ? nodes_[parent].first_child : nodes_[previous].next) = node;
  (next == kNoNode ? nodes_[parent].last_child : nodes_[next].previous) = node;
  MarkChanged(parent);
}

void XmlTree::Remove(NodeId node) {
  XmlNode& removed = nodes_[node];
  const NodeId parent = removed.parent;
  (removed.previous == kNoNode ? nodes_[parent].first_child : nodes_[removed.previous].next) =
      removed.next;
  (removed.next == kNoNode ? nodes_[parent].last_child : nodes_[removed.next].previous) =
      removed.previous;
  removed.parent = removed.previous = removed.next = kNoNode;
  MarkChanged(parent);
}

void XmlTree::SetLeaf(NodeId node, std::string_view markup) {
  XmlNode& leaf = nodes_[node];
  leaf.open = AddBytes(markup);
  leaf.close_length = 0;
  leaf.open_length = static_cast<uint32_t>(markup.find('>') + 1);
  if (!markup.substr(0, leaf.open_length).ends_with("/>")) {
    leaf.close_length = static_cast<uint32_t>(markup.size() - markup.rfind('<'));
  }
  leaf.close = leaf.open + static_cast<uint32_t>(markup.size()) - leaf.close_length;
  if (leaf.parent != kNoNode || node == root_) MarkChanged(leaf.parent);
}

void XmlTree::MarkChanged(NodeId node) {
  while (!nodes_[node].changed) {
    nodes_[node].changed = true;
    if (node == kNoNode) return;
    if (nodes_[node].parent == kNoNode && node != root_) return;  // not inserted yet
    node = nodes_[node].parent;
  }
}

// An empty-element tag becomes a start tag and an end tag, so that children have a place.
void XmlTree::OpenUp(NodeId node) {
  XmlNode& element = nodes_[node];
  if (element.close_length != 0) return;
  const std::string tag(OpenTag(node));
  const std::string name(TagName(tag));
  const std::string open_tag =
      tag.substr(0, tag.find_last_not_of(kBlanks, tag.size() - 3) + 1) + ">";
  element.open = AddBytes(open_tag);
  element.open_length = static_cast<uint32_t>(open_tag.size());
  element.close = AddBytes("</" + name + ">");
  element.close_length = static_cast<uint32_t>(name.size() + 3);
}

}  // namespace kestrelon::desktop::word
