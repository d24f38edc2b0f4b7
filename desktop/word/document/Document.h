// The text of a Word document: stories of characters with positions, as Word counts them, over the
// XML of the parts. Everything that an edit does not touch keeps its bytes.
//
// Parts are found by content type and relationship, never by name.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "automation/AutomationError.h"
#include "desktop/word/document/FindPattern.h"
#include "desktop/word/document/Story.h"
#include "desktop/word/document/Table.h"

namespace kestrelon::desktop::word {

enum class DocumentKind { kDocx, kDocm, kDotx, kDotm };

class Document {
 public:
  // Takes the bytes of the file. Error 5792 for a damaged or hostile package or part.
  static std::unique_ptr<Document> Open(std::string package_bytes);
  ~Document();

  Story& Main();
  // The first story of each type present, in order of type. Reads the parts that were not needed
  // until now: error 5792.
  std::vector<Story*> FirstStories();
  // The next story of the same type (the next section's header, the next text box of the main
  // text); nullptr after the last.
  Story* NextStory(const Story& story);

  // The bytes of the package. A template becomes a document and the other way round, as `kind`
  // says; macros are left out where the kind has none.
  std::string Save(DocumentKind kind);
  // A document (.docx) for a converter to print: without what is tracked as deleted or moved away,
  // and without comments. Nothing changes in this document. Error 5792 for a damaged part.
  std::string SaveForReading();
  // True once an edit has changed a text.
  bool changed() const;

 private:
  Document();
  struct Implementation;
  std::unique_ptr<Implementation> self_;
};

}  // namespace kestrelon::desktop::word
