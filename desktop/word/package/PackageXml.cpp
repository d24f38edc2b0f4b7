#include "desktop/word/package/PackageXml.h"

#include <algorithm>
#include <charconv>

#include "desktop/word/package/PackageError.h"
#include "desktop/word/package/PartName.h"

namespace kestrelon::desktop::word {
namespace {

constexpr std::string_view kTypesSpace =
    "http://schemas.openxmlformats.org/package/2006/content-types";
constexpr std::string_view kRelationshipsSpace =
    "http://schemas.openxmlformats.org/package/2006/relationships";
constexpr std::string_view kNoRelationships =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n"
    "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\"/>";

// The attribute of an element that must have it.
const std::string& Required(const ListElement& element, std::string_view attribute,
                            std::string_view part) {
  if (const std::string* value = element.Find(attribute)) return *value;
  RefusePackage("an element " + Quoted(element.name) + " of " + Quoted(part) + " has no " +
                Quoted(attribute));
}

[[noreturn]] void RefuseElement(const ListElement& element, std::string_view part) {
  RefusePackage("an element " + Quoted(element.name) + " does not belong into " + Quoted(part));
}

std::string ExtensionKey(std::string_view part) {
  const size_t dot = part.find_last_of("./");
  return dot == std::string_view::npos || part[dot] == '/' ? "" : PartKey(part.substr(dot + 1));
}

}  // namespace

ContentTypes::ContentTypes(std::string text)
    : list_(std::move(text), kContentTypesName, "Types", kTypesSpace) {
  for (const ListElement& element : list_.elements()) {
    const bool is_default = element.name == "Default";
    if (!is_default && element.name != "Override") RefuseElement(element, kContentTypesName);
    const std::string& subject =
        Required(element, is_default ? "Extension" : "PartName", kContentTypesName);
    declarations_.push_back(
        {is_default, PartKey(subject), Required(element, "ContentType", kContentTypesName)});
  }
}

size_t ContentTypes::Find(bool is_default, std::string_view key) const {
  const auto found = std::ranges::find_if(declarations_, [&](const Declaration& d) {
    return d.is_default == is_default && d.key == key;
  });
  return static_cast<size_t>(found - declarations_.begin());
}

std::string ContentTypes::TypeOf(std::string_view part) const {
  size_t i = Find(false, PartKey(part));
  if (i == declarations_.size()) i = Find(true, ExtensionKey(part));
  return i == declarations_.size() ? "" : declarations_[i].type;
}

void ContentTypes::Set(std::string_view part, std::string_view type) {
  if (TypeOf(part) == type) return;
  const std::string key = PartKey(part);
  const size_t i = Find(false, key);
  if (i == declarations_.size()) {
    list_.Append("Override", {{"PartName", part}, {"ContentType", type}});
    declarations_.push_back({false, key, std::string(type)});
  } else {
    const std::string name = *list_.elements()[i].Find("PartName");
    list_.Replace(i, {{"PartName", name}, {"ContentType", type}});
    declarations_[i].type = type;
  }
}

void ContentTypes::SetDefault(std::string_view extension, std::string_view type) {
  if (Find(true, extension) != declarations_.size()) return;
  list_.Append("Default", {{"Extension", extension}, {"ContentType", type}});
  declarations_.push_back({true, std::string(extension), std::string(type)});
}

void ContentTypes::Remove(std::string_view part) {
  const size_t i = Find(false, PartKey(part));
  if (i == declarations_.size()) return;
  list_.Erase(i);
  declarations_.erase(declarations_.begin() + static_cast<ptrdiff_t>(i));
}

RelationshipList::RelationshipList(std::string source, std::string text)
    : source_(std::move(source)),
      list_(std::move(text), RelationshipsPartOf(source_), "Relationships", kRelationshipsSpace) {
  const std::string part = RelationshipsPartOf(source_);
  for (const ListElement& element : list_.elements()) {
    if (element.name != "Relationship") RefuseElement(element, part);
    const std::string& target = Required(element, "Target", part);
    const std::string* mode = element.Find("TargetMode");
    const bool external = mode != nullptr && *mode == "External";
    relationships_.push_back({Required(element, "Id", part), Required(element, "Type", part),
                              external ? target : ResolveTarget(source_, target), external});
  }
}

RelationshipList::RelationshipList(std::string source)
    : RelationshipList(std::move(source), std::string(kNoRelationships)) {}

std::string RelationshipList::FreeId() const {
  uint32_t last = 0;
  for (const Relationship& relationship : relationships_) {
    const std::string_view id = relationship.id;
    uint32_t number = 0;
    if (!id.starts_with("rId")) continue;
    const auto [end, error] = std::from_chars(id.data() + 3, id.data() + id.size(), number);
    // Numbers beyond any that a writer counts up to are names to us.
    constexpr uint32_t kLargest = 1'000'000'000;
    if (error == std::errc() && end == id.data() + id.size() && number < kLargest) {
      last = std::max(last, number);
    }
  }
  return "rId" + std::to_string(last + 1);
}

std::string RelationshipList::Add(std::string_view type, std::string_view target, bool external) {
  const std::string id = FreeId();
  const std::string reference = external ? std::string(target) : ReferenceTo(source_, target);
  Attributes attributes = {{"Id", id}, {"Type", type}, {"Target", reference}};
  if (external) attributes.emplace_back("TargetMode", "External");
  list_.Append("Relationship", attributes);
  relationships_.push_back({id, std::string(type), std::string(target), external});
  return id;
}

void RelationshipList::RemoveLeadingTo(std::string_view key) {
  for (size_t i = relationships_.size(); i-- > 0;) {
    if (relationships_[i].external || PartKey(relationships_[i].target) != key) continue;
    list_.Erase(i);
    relationships_.erase(relationships_.begin() + static_cast<ptrdiff_t>(i));
  }
}

void RelationshipList::SpellTargets(const std::function<std::string(const std::string&)>& spell) {
  for (Relationship& relationship : relationships_) {
    if (!relationship.external) relationship.target = spell(relationship.target);
  }
}

}  // namespace kestrelon::desktop::word
