// The application, its documents, and a document.
#pragma once

#include "desktop/storage/Paths.h"
#include "desktop/word/objects/WordObject.h"

namespace kestrelon::desktop::word {

class ApplicationObject final : public WordObject<ApplicationObject> {
 public:
  using WordObject::WordObject;
  static const MemberTable<ApplicationObject>& Members();

  Value GetName() { return u"Microsoft Word"; }
  Value GetVersion() { return u"16.0"; }
  Value GetDocuments();
  // Error 4248 when no document is open.
  Value GetActiveDocument();
  // Nothing when no document is open.
  Value GetSelection();
  Value GetVisible() { return owner().session->visible; }
  // True hands each open document to the user's own program.
  void PutVisible(const Value& value);
  // Where Open, Add and InsertFile look for names without a folder. Error 4172 for a folder that is
  // not there.
  Value ChangeFileOpenDirectory(const MethodArguments& arguments);
  Value Quit(const MethodArguments& arguments);
};

class DocumentsObject final : public WordCollection<DocumentsObject> {
 public:
  using WordCollection::WordCollection;
  static const MemberTable<DocumentsObject>& Members();

  int32_t Size() { return static_cast<int32_t>(owner().session->documents.size()); }
  Value At(int32_t index);
  // By number or by name.
  Value ItemOf(const MethodArguments& arguments);
  // A new document on a template. Error 5151 for one that is missing.
  Value Add(const MethodArguments& arguments);
  // The document of a file; when it is open already, that one. Error 5174 for a missing file.
  Value Open(const MethodArguments& arguments);
};

class DocumentObject final : public WordObject<DocumentObject> {
 public:
  using WordObject::WordObject;
  static const MemberTable<DocumentObject>& Members();

  Value GetName() { return document().Name(); }
  Value GetFullName();
  Value GetPath() { return TextFromPath(document().path().parent_path()); }
  Value GetSaved() { return document().IsSaved(); }
  void PutSaved(const Value& value) { document().SetSaved(value.ToBoolean()); }
  Value GetApplication();
  Value GetContent();
  Value GetTables();
  Value GetStoryRanges();
  // Error 4608 for positions that are not in the main text.
  Value Range(const MethodArguments& arguments);
  Value Select(const MethodArguments&);
  Value Activate(const MethodArguments&);
  Value Save(const MethodArguments&);
  Value SaveAs(const MethodArguments& arguments);
  Value ExportAsFixedFormat(const MethodArguments& arguments);
  Value Close(const MethodArguments& arguments);
};

}  // namespace kestrelon::desktop::word
