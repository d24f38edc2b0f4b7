#include "desktop/word/document/DocumentPart.h"

#include "desktop/word/document/StoryText.h"

namespace kestrelon::desktop::word {
namespace {

bool HoldsTextBox(const XmlTree& tree, NodeId node) {
  if (tree.name(node) == Name::kTextBoxContent) return true;
  for (NodeId child = tree.first_child(node); child != kNoNode; child = tree.next(child)) {
    if (HoldsTextBox(tree, child)) return true;
  }
  return false;
}

// Gives the branches of the alternative that were not edited the content of the one that was.
void AlignBranches(XmlTree& tree, NodeId alternative, NodeId edited) {
  if (HoldsTextBox(tree, alternative)) return;
  for (NodeId branch = tree.first_child(alternative); branch != kNoNode;
       branch = tree.next(branch)) {
    const bool is_branch =
        tree.name(branch) == Name::kChoice || tree.name(branch) == Name::kFallback;
    if (!is_branch || branch == edited) continue;
    while (tree.first_child(branch) != kNoNode) tree.Remove(tree.first_child(branch));
    for (NodeId child = tree.first_child(edited); child != kNoNode; child = tree.next(child)) {
      tree.Insert(branch, kNoNode, tree.CopyOf(child));
    }
  }
}

}  // namespace

void DocumentPart::Touch(NodeId node) {
  edited = true;
  if (tree.parent(node) == last_touched_) return;
  last_touched_ = tree.parent(node);
  for (NodeId around = tree.parent(node); around != kNoNode; around = tree.parent(around)) {
    const Name name = tree.name(around);
    if (name == Name::kTextBoxContent) return;
    if (name == Name::kChoice || name == Name::kFallback) touched_alternatives.insert(around);
    if (name != Name::kControl || !touched_controls.insert(around).second) continue;
    const NodeId properties = tree.Child(around, Name::kControlProperties);
    if (properties == kNoNode) continue;
    const NodeId shown = tree.Child(properties, Name::kPlaceholderShown);
    if (shown != kNoNode) tree.Remove(shown);
  }
}

bool DocumentPart::BringUpToDate() {
  if (!edited) return false;
  edited = false;
  last_touched_ = kNoNode;
  for (StoryText* text : texts) text->WriteText();
  for (const NodeId branch : touched_alternatives) {
    if (tree.IsAttached(branch)) AlignBranches(tree, tree.parent(branch), branch);
  }
  touched_alternatives.clear();
  return true;
}

}  // namespace kestrelon::desktop::word
