#include "desktop/word/objects/Session.h"

#include <algorithm>
#include <utility>

#include "desktop/opener/Opener.h"
#include "desktop/storage/AtomicFile.h"
#include "desktop/storage/Paths.h"
#include "desktop/word/objects/WordErrors.h"

namespace kestrelon::desktop::word {
namespace fs = std::filesystem;

OpenDocument::OpenDocument(std::unique_ptr<Document> engine, String name)
    : engine_(std::move(engine)), selection_(engine_->Main(), Span{}), name_(std::move(name)) {}

void OpenDocument::Select(Story& story, Span span) {
  moves_start_ = false;
  if (&selection_.story() == &story) {
    selection_.Set(span);
  } else {
    selection_ = TrackedSpan(story, span);
  }
}

String OpenDocument::Name() const {
  return path().empty() ? name_ : TextFromPath(path().filename());
}

void OpenDocument::BindToFile(const fs::path& path, std::optional<FileFormat> format) {
  path_ = path;
  format_ = format;
  saved_edits_ = edits_;
}

void OpenDocument::SaveAs(const SaveTarget& target) {
  WriteDocument(*engine_, target);
  if (target.format != FileFormat::kPdf) BindToFile(target.path, target.format);
}

void OpenDocument::Save() {
  if (path().empty()) {
    throw AutomationError(kCommandFailed, u"Command failed: " + Name() +
                                              u" was never saved and has no file name. Use SaveAs, "
                                              u"or close it without saving.");
  }
  SaveAs(ResolveSaveTarget(path(), format_));
}

fs::path OpenDocument::WritePrivateCopy() {
  PrivateFolder folder("kestrelon-word-");
  fs::path name = PathFromText(Name());
  const fs::path copy = folder.path() / name.replace_extension(".docx");
  WriteDocument(*engine_, {copy, FileFormat::kDefault});
  folder.Keep();
  return copy;
}

void OpenDocument::ShowToUser() {
  if (shown_edits_ == edits_ && shown_path_ == path()) return;
  const fs::path file = !path().empty() && IsSaved() ? path() : WritePrivateCopy();
  shown_edits_ = edits_;
  shown_path_ = path();
  if (OpenForUser(file.string()) == OpenOutcome::kCannotStart) {
    throw AutomationError(kCommandFailed,
                          u"Command failed: the program that shows documents cannot be started; "
                          u"check KESTRELON_OPENER. The document is in " +
                              TextFromPath(file) + u".");
  }
}

fs::path Session::Resolve(const String& name) const {
  if (name.empty()) throw BadParameter(u"the file name is empty.");
  return fs::absolute(folder / PathFromText(name)).lexically_normal();
}

void Session::Add(std::shared_ptr<OpenDocument> document) {
  documents.push_back(document);
  active = std::move(document);
}

void Session::Remove(const std::shared_ptr<OpenDocument>& document) {
  document->Close();
  documents.erase(std::find(documents.begin(), documents.end(), document));
  if (active == document) active = documents.empty() ? nullptr : documents.back();
}

std::shared_ptr<OpenDocument> Session::FindByPath(const fs::path& path) const {
  for (const auto& document : documents) {
    std::error_code error;
    if (!document->path().empty() && fs::equivalent(document->path(), path, error)) {
      return document;
    }
  }
  return nullptr;
}

void Session::Show() {
  if (!HasOpener()) return;
  for (const auto& document : documents) document->ShowToUser();
}

void Session::End() {
  running = false;
  for (const auto& document : documents) document->Close();
  documents.clear();
  active.reset();
}

}  // namespace kestrelon::desktop::word
