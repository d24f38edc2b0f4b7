// What the XML of the package itself says: the content type of each part, and the relationships
// between parts.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/word/package/ElementList.h"
#include "desktop/word/package/Package.h"

namespace kestrelon::desktop::word {

constexpr std::string_view kContentTypesName = "/[Content_Types].xml";
constexpr std::string_view kRelationshipsType =
    "application/vnd.openxmlformats-package.relationships+xml";

class ContentTypes {
 public:
  explicit ContentTypes(std::string text);

  // "" when nothing is declared for the part.
  std::string TypeOf(std::string_view part) const;
  void Set(std::string_view part, std::string_view type);
  void SetDefault(std::string_view extension, std::string_view type);
  // Forgets what is said of this part alone.
  void Remove(std::string_view part);

  const ElementList& list() const { return list_; }

 private:
  struct Declaration {
    bool is_default = false;
    std::string key;  // of the extension or of the part
    std::string type;
  };

  // The index of the declaration, its number of them when there is none.
  size_t Find(bool is_default, std::string_view key) const;

  ElementList list_;
  std::vector<Declaration> declarations_;  // one for each element of the list
};

// The relationships of one part, or of the package for "".
class RelationshipList {
 public:
  RelationshipList(std::string source, std::string text);
  // Without any yet.
  explicit RelationshipList(std::string source);

  const std::vector<Relationship>& relationships() const { return relationships_; }
  std::string Add(std::string_view type, std::string_view target, bool external);
  void RemoveLeadingTo(std::string_view key);
  // `spell` gives the spelling of the part that an internal target leads to.
  void SpellTargets(const std::function<std::string(const std::string&)>& spell);

  const ElementList& list() const { return list_; }

 private:
  std::string FreeId() const;

  std::string source_;
  ElementList list_;
  std::vector<Relationship> relationships_;  // one for each element of the list
};

}  // namespace kestrelon::desktop::word
