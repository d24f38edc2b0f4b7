#include "desktop/word/package/Package.h"

#include <list>
#include <optional>
#include <unordered_map>
#include <utility>

#include "desktop/word/package/PackageError.h"
#include "desktop/word/package/PackageXml.h"
#include "desktop/word/package/PartName.h"
#include "desktop/word/package/XmlScan.h"
#include "desktop/word/package/ZipReader.h"
#include "desktop/word/package/ZipWriter.h"

namespace kestrelon::desktop::word {
namespace {

// Pictures and web pages inside a document may have a DOCTYPE; they are never parsed.
bool IsDocumentXml(std::string_view type) {
  return type.starts_with("application/") && type.ends_with("xml") &&
         type != "application/xhtml+xml";
}

}  // namespace

struct Package::Implementation {
  struct Entry {
    // What Write() has to deflate; nothing when the original is still right.
    std::optional<std::string_view> NewContent() const {
      if (content) return *content;
      if (list != nullptr && list->changed()) return list->text();
      return std::nullopt;
    }

    std::string name;                    // absolute
    std::optional<ZipEntry> original;    // where it lies in the file
    std::optional<Buffer> inflated;      // the original's content once somebody asked for it
    std::optional<std::string> content;  // what has taken the place of the original
    const ElementList* list = nullptr;   // the content of what is no part, once it was read
    bool is_part = true;
  };

  explicit Implementation(std::string file) : bytes(std::move(file)), inflater(bytes) {}

  void ReadEntries();
  void ReadContentTypes();
  void VerifyEntries();

  // Null when it is missing or no part.
  Entry* FindPart(std::string_view name) const;
  Entry& RequirePart(std::string_view name) const;
  Entry& Append(std::string name);
  void Erase(const std::string& key);
  std::string_view ContentOf(Entry& entry);

  RelationshipList& RelationshipsOf(std::string_view part);
  // The relationships parts in the file that may name other parts.
  void ReadAllRelationships();

  std::string bytes;
  std::list<Entry> entries;  // a list, so that views of short contents stay valid
  std::unordered_map<std::string, std::list<Entry>::iterator> by_key;
  Inflater inflater;
  std::optional<ContentTypes> types;
  // By the key of the relationships part; those that somebody asked for.
  std::unordered_map<std::string, RelationshipList> relationships;
};

void Package::Implementation::ReadEntries() {
  for (ZipEntry& zip : ReadZipDirectory(bytes)) {
    Entry& entry = entries.emplace_back();
    entry.name = "/" + zip.name;
    entry.is_part = !zip.is_folder() && !IsRelationshipsPart(entry.name);
    entry.original = std::move(zip);
    by_key.emplace(PartKey(entry.name), std::prev(entries.end()));
  }
}

void Package::Implementation::ReadContentTypes() {
  const auto found = by_key.find(PartKey(kContentTypesName));
  if (found == by_key.end()) {
    RefusePackage("it is a zip archive but no document (it has no list of content types)");
  }
  Entry& entry = *found->second;
  entry.is_part = false;
  types.emplace(std::string(inflater.Inflate(*entry.original).view()));
  entry.list = &types->list();
  entries.splice(entries.begin(), entries, found->second);
}

void Package::Implementation::VerifyEntries() {
  Inflater verifier(bytes);
  for (const Entry& entry : entries) {
    if (!IsRelationshipsPart(entry.name) && !IsDocumentXml(types->TypeOf(entry.name))) {
      verifier.Verify(*entry.original, [](std::string_view) {});
      continue;
    }
    XmlScan scan(entry.name);
    verifier.Verify(*entry.original, [&](std::string_view piece) { scan.Read(piece); });
    scan.Finish();
  }
}

Package::Implementation::Entry* Package::Implementation::FindPart(std::string_view name) const {
  const auto found = by_key.find(PartKey(name));
  return found == by_key.end() || !found->second->is_part ? nullptr : &*found->second;
}

Package::Implementation::Entry& Package::Implementation::RequirePart(std::string_view name) const {
  if (Entry* entry = FindPart(name)) return *entry;
  RefusePackage("it lacks its part " + Quoted(name));
}

Package::Implementation::Entry& Package::Implementation::Append(std::string name) {
  Entry& entry = entries.emplace_back();
  by_key.emplace(PartKey(name), std::prev(entries.end()));
  entry.name = std::move(name);
  return entry;
}

void Package::Implementation::Erase(const std::string& key) {
  const auto found = by_key.find(key);
  if (found == by_key.end()) return;
  entries.erase(found->second);
  by_key.erase(found);
}

std::string_view Package::Implementation::ContentOf(Entry& entry) {
  if (entry.content) return *entry.content;
  if (!entry.inflated) entry.inflated = inflater.Inflate(*entry.original);
  return entry.inflated->view();
}

RelationshipList& Package::Implementation::RelationshipsOf(std::string_view part) {
  const std::string key = PartKey(RelationshipsPartOf(part));
  if (const auto known = relationships.find(key); known != relationships.end()) {
    return known->second;
  }
  std::string source(part);
  const auto entry = by_key.find(key);
  if (entry == by_key.end()) {
    return relationships.try_emplace(key, std::move(source)).first->second;
  }
  const Buffer text = inflater.Inflate(*entry->second->original);
  RelationshipList list(std::move(source), std::string(text.view()));
  list.SpellTargets([this](const std::string& target) {
    const Entry* found = FindPart(target);
    return found == nullptr ? target : found->name;
  });
  RelationshipList& kept = relationships.emplace(key, std::move(list)).first->second;
  entry->second->list = &kept.list();
  return kept;
}

void Package::Implementation::ReadAllRelationships() {
  for (const Entry& entry : entries) {
    if (IsRelationshipsPart(entry.name)) RelationshipsOf(SourceOfRelationships(entry.name));
  }
}

Package::Package() = default;
Package::~Package() = default;

std::unique_ptr<Package> Package::Open(std::string bytes) {
  std::unique_ptr<Package> package(new Package());
  package->self_ = std::make_unique<Implementation>(std::move(bytes));
  package->self_->ReadEntries();
  package->self_->ReadContentTypes();
  package->self_->VerifyEntries();
  return package;
}

std::vector<std::string> Package::PartNames() const {
  std::vector<std::string> names;
  for (const Implementation::Entry& entry : self_->entries) {
    if (entry.is_part) names.push_back(entry.name);
  }
  return names;
}

bool Package::HasPart(std::string_view name) const { return self_->FindPart(name) != nullptr; }

std::string Package::ContentType(std::string_view name) const { return self_->types->TypeOf(name); }

void Package::SetContentType(std::string_view name, std::string_view type) {
  self_->types->Set(name, type);
}

std::string_view Package::Content(std::string_view name) {
  return self_->ContentOf(self_->RequirePart(name));
}

void Package::Replace(std::string_view name, std::string content) {
  Implementation::Entry& entry = self_->RequirePart(name);
  entry.content = std::move(content);
  entry.inflated.reset();
}

void Package::Add(std::string_view name, std::string_view content_type, std::string content) {
  if (!name.starts_with('/') || name.ends_with('/') || !NameFault(name.substr(1)).empty() ||
      IsRelationshipsPart(name) || self_->by_key.contains(PartKey(name))) {
    throw AutomationError(kInvalidProcedureCall);
  }
  self_->types->Set(name, content_type);
  self_->Append(std::string(name)).content = std::move(content);
}

void Package::Remove(std::string_view name) {
  if (!HasPart(name)) return;
  const std::string part(name);  // the view may lie in what is removed
  self_->ReadAllRelationships();
  const std::string key = PartKey(part);
  const std::string relationships_key = PartKey(RelationshipsPartOf(part));
  self_->Erase(relationships_key);
  self_->relationships.erase(relationships_key);
  for (auto& [source, list] : self_->relationships) list.RemoveLeadingTo(key);
  self_->types->Remove(part);
  self_->Erase(key);
}

const std::vector<Relationship>& Package::Relationships(std::string_view part) const {
  return self_->RelationshipsOf(part).relationships();
}

std::string Package::AddRelationship(std::string_view part, std::string_view type,
                                     std::string_view target, bool external) {
  if (!part.empty() && !HasPart(part)) throw AutomationError(kInvalidProcedureCall);
  RelationshipList& list = self_->RelationshipsOf(part);
  const std::string name = RelationshipsPartOf(part);
  if (!self_->by_key.contains(PartKey(name))) {
    self_->types->SetDefault("rels", kRelationshipsType);
    Implementation::Entry& entry = self_->Append(name);
    entry.is_part = false;
    entry.list = &list.list();
  }
  return list.Add(type, target, external);
}

std::string Package::RelatedPart(std::string_view part, std::string_view type_suffix) const {
  for (const Relationship& relationship : Relationships(part)) {
    if (!relationship.external && relationship.type.ends_with(type_suffix)) {
      return relationship.target;
    }
  }
  return "";
}

std::string Package::Write() const {
  size_t expected = self_->bytes.size();
  for (const Implementation::Entry& entry : self_->entries) {
    // Text deflates to less than a fourth; room for more is taken when it is needed.
    if (const auto content = entry.NewContent()) expected += content->size() / 4;
  }
  ZipWriter writer(expected);
  for (const Implementation::Entry& entry : self_->entries) {
    if (const auto content = entry.NewContent()) {
      writer.Add(std::string_view(entry.name).substr(1), *content);
    } else {
      writer.Copy(self_->bytes, *entry.original);
    }
  }
  return std::move(writer).Finish();
}

}  // namespace kestrelon::desktop::word
