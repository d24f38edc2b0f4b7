// The headers and footers of a document's sections.
#pragma once

#include <string>
#include <vector>

#include "desktop/word/document/Story.h"
#include "desktop/word/xml/XmlTree.h"

namespace kestrelon::desktop::word {

struct HeaderReference {
  StoryType type;
  std::string relationship;  // its id
};

// What the properties of the sections refer to, in the order of the sections.
std::vector<HeaderReference> ReadHeaderReferences(const XmlTree& tree,
                                                  const std::vector<NodeId>& sections);

}  // namespace kestrelon::desktop::word
