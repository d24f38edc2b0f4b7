// One running Word: its open documents, and what of a document is not text: file, selection, state.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

#include "automation/Text.h"
#include "desktop/word/document/Document.h"
#include "desktop/word/objects/DocumentFiles.h"

namespace kestrelon::desktop::word {

// What a Find object is set to. Selection keeps one, every Range has its own.
struct FindSettings {
  String text;
  String replacement;
  bool match_case = false;
  bool forward = true;
  int32_t wrap = 0;  // 0 stop at the end of the range, 1 continue with the rest of the story
  bool found = false;
  std::shared_ptr<const FindPattern> pattern;  // of text and match_case; made when first needed
};

class OpenDocument {
 public:
  // `name` stands until the document has a file.
  OpenDocument(std::unique_ptr<Document> engine, String name);

  Document& engine() { return *engine_; }
  // Of a selection that was extended: the end that MoveDown and MoveUp move.
  bool moves_start() const { return moves_start_; }
  void SetMovesStart(bool moves_start) { moves_start_ = moves_start; }
  // After every change of the text.
  void NoteEdit() { ++edits_; }

  TrackedSpan& selection() { return selection_; }
  FindSettings& selection_find() { return selection_find_; }
  void Select(Story& story, Span span);

  bool closed() const { return closed_; }
  void Close() { closed_ = true; }

  // "" when it was never saved.
  const std::filesystem::path& path() const { return path_; }
  String Name() const;
  bool IsSaved() const { return edits_ == saved_edits_; }
  void SetSaved(bool saved) { saved_edits_ = saved ? edits_ : -1; }
  // The document stands in this file. `format` is the one it is saved in again; without one, the
  // extension decides.
  void BindToFile(const std::filesystem::path& path, std::optional<FileFormat> format);
  // Writes it. PDF is a picture of the document; any other file is the document's own from then on.
  void SaveAs(const SaveTarget& target);
  // Error 4198 when it was never saved, or in a format that is not written here.
  void Save();
  // Hands it to the opener, once per state: its file, or a private copy, which stays for the user,
  // where the file does not hold what the document does. Error 4198, which names that file, when
  // the opener cannot be started.
  void ShowToUser();

 private:
  std::filesystem::path WritePrivateCopy();

  std::unique_ptr<Document> engine_;
  TrackedSpan selection_;
  FindSettings selection_find_;
  bool moves_start_ = false;
  String name_;
  std::filesystem::path path_;
  std::optional<FileFormat> format_;
  int64_t edits_ = 0;
  int64_t saved_edits_ = 0;
  int64_t shown_edits_ = -1;
  std::filesystem::path shown_path_;
  bool closed_ = false;
};

struct Session {
  bool running = true;
  bool visible = false;
  int32_t documents_named = 0;
  std::vector<std::shared_ptr<OpenDocument>> documents;  // in the order of their opening
  std::shared_ptr<OpenDocument> active;
  std::filesystem::path folder;  // where names without one are looked up; "" for the process's

  // The absolute path of a file to be read. Error 4120 for an empty name.
  std::filesystem::path Resolve(const String& name) const;

  void Add(std::shared_ptr<OpenDocument> document);
  void Remove(const std::shared_ptr<OpenDocument>& document);
  std::shared_ptr<OpenDocument> FindByPath(const std::filesystem::path& path) const;
  // Every open document goes to the user; nothing happens without an opener.
  void Show();
  // From now on everything of this Word is error 462.
  void End();
};

}  // namespace kestrelon::desktop::word
