// The package of a word-processing document: a zip of parts with content types and relationships.
//
// Every entry is checked when the package is opened, at the cost of one inflation; after that parts
// are inflated only when asked for, and a part that nobody replaces is written back with its
// compressed bytes untouched. Part names are absolute ("/word/document.xml") and compared without
// regard to ASCII case and percent-encoding, as the packaging conventions have it.
//
// Refused, with an AutomationError that names what is wrong and what to do, before anything of the
// content is used: no zip, encrypted or multi-disk archives, zip64, duplicate or overlapping
// entries, names leading outside, more than 1,000 entries, damaged entries, a part over 256 MiB,
// or, above 100 KiB, one that inflates to more than 100 times its compressed size (actual bytes
// counted, not the header's word), an XML part with a DOCTYPE, nested deeper than 256, or whose
// elements are not all closed. Documents of Word 97-2003 and
// documents with a password are recognised and called so.
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
  std::string target;  // absolute part name, spelled as the part's own when it exists; the URI as
                       // it stands when external
  bool external = false;
};

class Package {
 public:
  // Takes the bytes of the file. Throws kCorruptDocument.
  static std::unique_ptr<Package> Open(std::string bytes);
  ~Package();

  // All part names, in the order of the file; without "[Content_Types].xml" and ".rels" parts,
  // which are no parts to any of the operations below either.
  std::vector<std::string> PartNames() const;
  bool HasPart(std::string_view name) const;
  // "" when nothing is declared for it.
  std::string ContentType(std::string_view name) const;
  void SetContentType(std::string_view name, std::string_view type);
  // The inflated part; stays valid until the part is replaced or removed. Throws kCorruptDocument
  // when it is missing.
  std::string_view Content(std::string_view name);
  // Throws kCorruptDocument when it is missing.
  void Replace(std::string_view name, std::string content);
  // Error 5 when the name is not absolute, not allowed or taken.
  void Add(std::string_view name, std::string_view content_type, std::string content);
  // Removes the part with its own relationships and every relationship that leads to it. Nothing
  // happens when it is missing.
  void Remove(std::string_view name);

  // Relationships of a part; of the package itself for "". The list stays where it is and changes
  // with AddRelationship and Remove. Throws kCorruptDocument when their XML is damaged.
  const std::vector<Relationship>& Relationships(std::string_view part) const;
  // Adds one and returns its id ("rId7"). `target` is an absolute part name, or a URI when
  // external.
  std::string AddRelationship(std::string_view part, std::string_view type, std::string_view target,
                              bool external = false);
  // The first target of an internal relationship whose type ends in `type_suffix`
  // ("/officeDocument", "/header"); "" when there is none.
  std::string RelatedPart(std::string_view part, std::string_view type_suffix) const;

  // The bytes of the package as it stands now: content types first, then the entries in their
  // order, new ones last. The same content always gives the same bytes.
  std::string Write() const;

 private:
  Package();
  struct Implementation;
  std::unique_ptr<Implementation> self_;
};

}  // namespace kestrelon::desktop::word
