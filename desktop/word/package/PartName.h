// Names of parts: absolute, "/" between the segments ("/word/document.xml").
#pragma once

#include <string>
#include <string_view>

namespace kestrelon::desktop::word {

// What two spellings of one name have in common: percent-encoding decoded, ASCII letters
// lower-cased.
std::string PartKey(std::string_view name);

// The absolute name that `target`, a relationship's reference, means within `source` (the package
// itself for ""). ".." at the root stays at the root; a fragment is dropped.
std::string ResolveTarget(std::string_view source, std::string_view target);

// The shortest plain reference from `source` to `name`: relative below the source's folder.
std::string ReferenceTo(std::string_view source, std::string_view name);

// "/word/_rels/document.xml.rels" for "/word/document.xml", "/_rels/.rels" for "".
std::string RelationshipsPartOf(std::string_view source);
bool IsRelationshipsPart(std::string_view name);
// The other way round.
std::string SourceOfRelationships(std::string_view relationships_part);

// Why `name`, as an archive entry has it, may not be used; "" when it may.
std::string_view NameFault(std::string_view name);

}  // namespace kestrelon::desktop::word
