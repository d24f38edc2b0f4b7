// A part of the package that holds text: its XML, and what has to be put right before it is
// written.
#pragma once

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "desktop/word/xml/XmlTree.h"

namespace kestrelon::desktop::word {

class StoryText;

struct DocumentPart {
  DocumentPart(std::string name, std::string content)
      : name(std::move(name)), tree(std::move(content), this->name) {}

  // Text inside the node has changed: content controls around it no longer show their placeholder,
  // and what depends on the text is noted.
  void Touch(NodeId node);
  // Brings the tree up to date with the texts. True when it differs from what was read or written
  // last.
  bool BringUpToDate();

  std::string name;
  XmlTree tree;
  std::vector<StoryText*> texts;
  std::set<NodeId> touched_controls;
  std::set<NodeId> touched_alternatives;
  bool edited = false;  // since it was last written

 private:
  NodeId last_touched_ = kNoNode;  // an edit touches the same run several times
};

}  // namespace kestrelon::desktop::word
