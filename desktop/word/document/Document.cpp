#include "desktop/word/document/Document.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>
#include <utility>

#include "desktop/word/document/BoundData.h"
#include "desktop/word/document/DocumentPart.h"
#include "desktop/word/document/ReadingCopy.h"
#include "desktop/word/document/Sections.h"
#include "desktop/word/document/StoryText.h"
#include "desktop/word/package/Package.h"
#include "desktop/word/package/PackageError.h"

namespace kestrelon::desktop::word {
namespace {

// In the order of DocumentKind.
constexpr std::array<std::string_view, 4> kContentTypes = {
    "application/vnd.openxmlformats-officedocument.wordprocessingml.document.main+xml",
    "application/vnd.ms-word.document.macroEnabled.main+xml",
    "application/vnd.openxmlformats-officedocument.wordprocessingml.template.main+xml",
    "application/vnd.ms-word.template.macroEnabledTemplate.main+xml",
};

// Parts that hold macros or belong to them.
constexpr std::array<std::string_view, 3> kMacroTypes = {
    "application/vnd.ms-office.vbaProject",
    "application/vnd.ms-word.vbaData",
    "application/vnd.ms-word.attachedToolbars",
};

bool HoldsMacros(std::string_view content_type) {
  return std::any_of(kMacroTypes.begin(), kMacroTypes.end(),
                     [&](std::string_view type) { return content_type.starts_with(type); });
}

bool IsDocument(std::string_view content_type) {
  return std::find(kContentTypes.begin(), kContentTypes.end(), content_type) != kContentTypes.end();
}

void RemoveMacros(Package& package) {
  for (const std::string& name : package.PartNames()) {
    if (HoldsMacros(package.ContentType(name))) package.Remove(name);
  }
}

void SetKind(Package& package, const std::string& main_part, DocumentKind kind) {
  if (kind == DocumentKind::kDocx || kind == DocumentKind::kDotx) RemoveMacros(package);
  package.SetContentType(main_part, kContentTypes[static_cast<size_t>(kind)]);
}

// The notes or comments that someone wrote; separators and the like are not among them.
std::vector<NodeId> WrittenNotes(const XmlTree& tree) {
  std::vector<NodeId> notes;
  for (NodeId node = tree.first_child(tree.root()); node != kNoNode; node = tree.next(node)) {
    const Name name = tree.name(node);
    const bool is_note =
        name == Name::kFootnote || name == Name::kEndnote || name == Name::kComment;
    if (is_note && tree.Attribute(node, "type").value_or("normal") == "normal") {
      notes.push_back(node);
    }
  }
  return notes;
}

}  // namespace

struct Document::Implementation {
  std::unique_ptr<Package> package;
  std::string main_part;
  std::map<std::string, std::unique_ptr<DocumentPart>> parts;
  std::vector<std::unique_ptr<Story>> stories;
  std::map<StoryType, std::vector<Story*>> chains;
  bool all_read = false;
  bool changed = false;

  DocumentPart& Part(const std::string& name) {
    const auto known = parts.find(name);
    if (known != parts.end()) return *known->second;
    auto part = std::make_unique<DocumentPart>(name, std::string(package->Content(name)));
    return *(parts[name] = std::move(part));
  }

  void AddStory(Document& document, StoryType type, DocumentPart& part,
                const std::vector<NodeId>& containers) {
    if (containers.empty()) return;
    stories.push_back(
        std::make_unique<Story>(document, type, std::make_unique<StoryText>(part, containers)));
    chains[type].push_back(stories.back().get());
  }

  void AddNotes(Document& document, StoryType type, std::string_view relationship) {
    const std::string name = package->RelatedPart(main_part, relationship);
    if (name.empty() || !package->HasPart(name) || parts.contains(name)) return;
    DocumentPart& part = Part(name);
    AddStory(document, type, part, WrittenNotes(part.tree));
  }

  void AddHeaders(Document& document, const std::vector<NodeId>& sections) {
    const auto& relationships = package->Relationships(main_part);
    for (const HeaderReference& reference : ReadHeaderReferences(Part(main_part).tree, sections)) {
      const auto found =
          std::find_if(relationships.begin(), relationships.end(), [&](const Relationship& one) {
            return !one.external && one.id == reference.relationship;
          });
      if (found == relationships.end() || !package->HasPart(found->target)) continue;
      if (parts.contains(found->target)) continue;  // used by a section before, and a story already
      DocumentPart& part = Part(found->target);
      AddStory(document, reference.type, part, {part.tree.root()});
    }
  }

  bool HasUnsavedEdits() const {
    return std::any_of(parts.begin(), parts.end(),
                       [](const auto& entry) { return entry.second->edited; });
  }

  void WriteParts() {
    for (auto& [name, part] : parts) {
      if (!part->BringUpToDate()) continue;
      changed = true;
      UpdateBoundData(*package, main_part, *part);
      package->Replace(name, part->tree.Write());
    }
  }
};

Document::Document() : self_(std::make_unique<Implementation>()) {}
Document::~Document() = default;

std::unique_ptr<Document> Document::Open(std::string package_bytes) {
  std::unique_ptr<Document> document(new Document());
  Implementation& self = *document->self_;
  self.package = Package::Open(std::move(package_bytes));
  self.main_part = self.package->RelatedPart("", "/officeDocument");
  if (!self.package->HasPart(self.main_part) ||
      !IsDocument(self.package->ContentType(self.main_part))) {
    RefusePackage("it is not a word-processing document");
  }
  DocumentPart& main = self.Part(self.main_part);
  const NodeId body = main.tree.Child(main.tree.root(), Name::kBody);
  if (main.tree.name(main.tree.root()) != Name::kDocument || body == kNoNode) {
    RefusePackage("its main part " + Quoted(self.main_part) + " has no body");
  }
  self.AddStory(*document, StoryType::kMain, main, {body});
  self.chains[StoryType::kTextFrame] = document->Main().TextBoxes();
  return document;
}

Story& Document::Main() { return *self_->stories.front(); }

std::vector<Story*> Document::FirstStories() {
  Implementation& self = *self_;
  if (!self.all_read) {
    self.AddNotes(*this, StoryType::kFootnotes, "/footnotes");
    self.AddNotes(*this, StoryType::kEndnotes, "/endnotes");
    self.AddNotes(*this, StoryType::kComments, "/comments");
    std::vector<NodeId> sections = Main().text_->sections();
    const XmlTree& tree = self.Part(self.main_part).tree;
    const NodeId last = tree.Child(tree.Child(tree.root(), Name::kBody), Name::kSectionProperties);
    if (last != kNoNode) sections.push_back(last);
    self.AddHeaders(*this, sections);
    self.all_read = true;
  }
  std::vector<Story*> first;
  for (auto& [type, chain] : self.chains) {
    // A text box goes with the picture that holds it.
    std::erase_if(chain, [](const Story* story) { return !story->text_->IsPresent(); });
    if (!chain.empty()) first.push_back(chain.front());
  }
  return first;
}

Story* Document::NextStory(const Story& story) {
  const auto& chain = self_->chains[story.type()];
  auto next = std::find(chain.begin(), chain.end(), &story);
  if (next != chain.end()) ++next;
  while (next != chain.end() && !(*next)->text_->IsPresent()) ++next;
  return next == chain.end() ? nullptr : *next;
}

std::string Document::Save(DocumentKind kind) {
  Implementation& self = *self_;
  self.WriteParts();
  SetKind(*self.package, self.main_part, kind);
  return self.package->Write();
}

std::string Document::SaveForReading() {
  Implementation& self = *self_;
  self.WriteParts();
  const std::unique_ptr<Package> copy = Package::Open(self.package->Write());
  SetKind(*copy, self.main_part, DocumentKind::kDocx);
  LeaveOnlyWhatIsRead(*copy, self.main_part);
  return copy->Write();
}

bool Document::changed() const { return self_->changed || self_->HasUnsavedEdits(); }

}  // namespace kestrelon::desktop::word
