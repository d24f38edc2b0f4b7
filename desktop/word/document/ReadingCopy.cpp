#include "desktop/word/document/ReadingCopy.h"

#include <algorithm>
#include <array>
#include <set>
#include <string_view>

#include "desktop/word/xml/XmlTree.h"

namespace kestrelon::desktop::word {
namespace {

// The ends of relationship types.
constexpr std::array<std::string_view, 4> kStories = {"/header", "/footer", "/footnotes",
                                                      "/endnotes"};
constexpr std::array<std::string_view, 5> kComments = {
    "/comments", "/commentsExtended", "/commentsIds", "/commentsExtensible", "/people"};

template <size_t Size>
bool IsOneOf(std::string_view type, const std::array<std::string_view, Size>& ends) {
  return std::any_of(ends.begin(), ends.end(),
                     [&](std::string_view end) { return type.ends_with(end); });
}

bool IsDeletedRow(const XmlTree& tree, NodeId node) {
  if (tree.name(node) != Name::kRow) return false;
  const NodeId properties = tree.Child(node, Name::kRowProperties);
  return properties != kNoNode && tree.Child(properties, Name::kDeleted) != kNoNode;
}

bool IsNotRead(const XmlTree& tree, NodeId node) {
  switch (tree.name(node)) {
    case Name::kDeleted:
    case Name::kMovedFrom:
    case Name::kMovedFromStart:
    case Name::kMovedFromEnd:
    case Name::kCommentStart:
    case Name::kCommentEnd:
    case Name::kCommentReference:
      return true;
    default:
      return IsDeletedRow(tree, node);
  }
}

void Clean(XmlTree& tree, NodeId parent) {
  NodeId next = kNoNode;
  for (NodeId node = tree.first_child(parent); node != kNoNode; node = next) {
    next = tree.next(node);
    // The properties of a paragraph say that its mark was deleted; without that it would be there
    // for good.
    if (tree.name(node) == Name::kParagraphProperties) continue;
    if (IsNotRead(tree, node)) {
      tree.Remove(node);
      continue;
    }
    Clean(tree, node);
    // A table needs a row.
    if (tree.name(node) == Name::kTable && tree.Child(node, Name::kRow) == kNoNode &&
        tree.Child(node, Name::kControl) == kNoNode) {
      tree.Remove(node);
    }
  }
}

}  // namespace

void LeaveOnlyWhatIsRead(Package& package, const std::string& main_part) {
  std::set<std::string> stories = {main_part};
  std::set<std::string> comments;
  for (const Relationship& relationship : package.Relationships(main_part)) {
    if (relationship.external || !package.HasPart(relationship.target)) continue;
    if (IsOneOf(relationship.type, kStories)) stories.insert(relationship.target);
    if (IsOneOf(relationship.type, kComments)) comments.insert(relationship.target);
  }
  for (const std::string& name : comments) package.Remove(name);
  for (const std::string& name : stories) {
    if (comments.contains(name)) continue;
    XmlTree tree(std::string(package.Content(name)), name);
    Clean(tree, tree.root());
    if (tree.changed()) package.Replace(name, tree.Write());
  }
}

}  // namespace kestrelon::desktop::word
