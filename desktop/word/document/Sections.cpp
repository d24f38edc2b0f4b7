#include "desktop/word/document/Sections.h"

namespace kestrelon::desktop::word {

std::vector<HeaderReference> ReadHeaderReferences(const XmlTree& tree,
                                                  const std::vector<NodeId>& sections) {
  std::vector<HeaderReference> references;
  for (const NodeId section : sections) {
    for (NodeId node = tree.first_child(section); node != kNoNode; node = tree.next(node)) {
      const bool is_header = tree.name(node) == Name::kHeaderReference;
      if (!is_header && tree.name(node) != Name::kFooterReference) continue;
      const std::string type = tree.Attribute(node, "type").value_or("default");
      const StoryType story =
          type == "even"    ? is_header ? StoryType::kEvenPagesHeader : StoryType::kEvenPagesFooter
          : type == "first" ? is_header ? StoryType::kFirstPageHeader : StoryType::kFirstPageFooter
          : is_header       ? StoryType::kPrimaryHeader
                            : StoryType::kPrimaryFooter;
      references.push_back({story, tree.Attribute(node, "id").value_or("")});
    }
  }
  return references;
}

}  // namespace kestrelon::desktop::word
