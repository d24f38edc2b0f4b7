// The package of a word-processing document: a zip of parts with content types and relationships.
//
// Parts are inflated only when asked for; a part that nobody replaces is written back with its
// compressed bytes untouched. Part names are absolute ("/word/document.xml") and compared without
// regard to ASCII case, as the packaging conventions have it.
//
// Refused, with an AutomationError that names what is wrong and what to do, before anything of the
// content is used: no zip, encrypted or multi-disk archives, duplicate or overlapping entries, names
// leading outside, more than 1,000 entries, a part over 256 MiB, or, above 100 KiB, one that inflates
// to more than 100 times its compressed size (actual bytes counted, not the header's word).
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "automation/AutomationError.h"

namespace kestrelon::desktop::word {

// Word's own number for a file it cannot open.
constexpr int32_t kCorruptDocument = 5792;

struct Relationship {
  std::string id;
  std::string type;    // the URI as it stands in the file; strict and transitional forms differ
  std::string target;  // absolute part name; the URI as it stands when external
  bool external = false;
};

class Package {
 public:
  // Takes the bytes of the file. Throws kCorruptDocument.
  static std::unique_ptr<Package> Open(std::string bytes);
  ~Package();

  // All part names, in the order of the file; without "[Content_Types].xml" and ".rels" parts.
  std::vector<std::string> PartNames() const;
  bool HasPart(std::string_view name) const;
  // "" when nothing is declared for it.
  std::string ContentType(std::string_view name) const;
  void SetContentType(std::string_view name, std::string_view type);
  // The inflated part; stays valid until the part is replaced or removed. Throws kCorruptDocument
  // when it is missing, damaged or over a limit.
  std::string_view Content(std::string_view name);
  void Replace(std::string_view name, std::string content);
  void Add(std::string_view name, std::string_view content_type, std::string content);
  // Removes the part with its own relationships and every relationship that leads to it.
  void Remove(std::string_view name);

  // Relationships of a part; of the package itself for "".
  const std::vector<Relationship>& Relationships(std::string_view part) const;
  // Adds one and returns its id ("rId7").
  std::string AddRelationship(std::string_view part, std::string_view type, std::string_view target,
                              bool external = false);
  // The first target of a relationship whose type ends in `type_suffix` ("/officeDocument",
  // "/header"); "" when there is none.
  std::string RelatedPart(std::string_view part, std::string_view type_suffix) const;

  // The bytes of the package as it stands now.
  std::string Write() const;

 private:
  Package();
  struct Implementation;
  std::unique_ptr<Implementation> self_;
};

}  // namespace kestrelon::desktop::word
