// Reads the bytes of a part into a tree, strictly: what is not well-formed is refused, not guessed.
#pragma once

#include <string_view>
#include <vector>

#include "desktop/word/xml/XmlTree.h"

namespace kestrelon::desktop::word {

class XmlReader {
 public:
  // Reads what stands in `tree`, whose nodes it fills.
  XmlReader(XmlTree& tree, std::string_view part) : tree_(tree), part_(part) {}
  // Returns the root element.
  NodeId Read();

 private:
  struct Binding {
    std::string_view prefix;
    Namespace ns;
    size_t depth;  // of the element that declares it
  };

  [[noreturn]] void Fail(std::string_view what) const;
  void TakeEncoding();
  void CheckDeclaration();
  void ReadAll();
  void ReadGap();
  void SkipComment();
  void SkipInstruction();
  void ReadStartTag();
  void ReadEndTag();
  void CloseElement();
  std::string_view ReadName();
  void SkipBlanks();
  // True when the tag is that of an empty element.
  bool ReadAttributes();
  void ReadAttribute();
  void Declare(std::string_view prefix, std::string_view uri);
  Name Resolve(std::string_view qualified);
  Namespace Find(std::string_view prefix);
  NodeId Append(Name name, size_t open);

  XmlTree& tree_;
  std::string_view part_;
  std::string_view text_;
  size_t at_ = 0;
  NodeId current_ = kNoNode;  // the element that is open; kNoNode outside the root
  NodeId root_ = kNoNode;
  size_t leaf_depth_ = 0;  // of the leaf that is open; 0 for none
  std::vector<std::string_view> open_names_;
  std::vector<std::string_view> attributes_;  // of the tag that is being read
  std::vector<Binding> bindings_;
  std::string_view last_prefix_;
  Namespace last_namespace_ = Namespace::kOther;
  bool last_is_known_ = false;
};

}  // namespace kestrelon::desktop::word
