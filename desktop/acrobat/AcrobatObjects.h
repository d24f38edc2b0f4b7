// The objects of a running Acrobat.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "desktop/server/ServerObject.h"

namespace kestrelon::desktop::acrobat {

struct OpenPdf {
  String file_name;     // of the file that it was opened from
  String title;         // of the window
  std::string content;  // a whole PDF file
};

// The open documents, in the order of their opening; the last one is active.
struct Session {
  std::vector<std::shared_ptr<OpenPdf>> documents;

  bool IsOpen(const std::shared_ptr<OpenPdf>& document) const;
  void Close(const std::shared_ptr<OpenPdf>& document);
};

class ApplicationObject final : public ServerObject<ApplicationObject> {
 public:
  explicit ApplicationObject(std::shared_ptr<Session> session) : session_(std::move(session)) {}
  static const MemberTable<ApplicationObject>& Members();

  Value GetNumAVDocs();
  // Nothing when no document is open.
  Value GetActiveDoc();
  // By number, from 0; Nothing for one that is not there.
  Value GetAVDoc(const MethodArguments& arguments);
  // Closes all documents.
  Value Exit(const MethodArguments&);
  // There is no window: True, and a copy of each document goes to the program that shows PDF files,
  // or False without one.
  Value Show(const MethodArguments&);
  Value Hide(const MethodArguments&) { return true; }

 private:
  std::shared_ptr<Session> session_;
};

// A document in its window.
class DocumentObject final : public ServerObject<DocumentObject> {
 public:
  DocumentObject(std::shared_ptr<Session> session, std::shared_ptr<OpenPdf> document)
      : session_(std::move(session)), document_(std::move(document)) {}
  static const MemberTable<DocumentObject>& Members();

  // False for a file that is missing or cannot become a PDF.
  Value Open(const MethodArguments& arguments);
  Value IsValid() { return session_->IsOpen(document_); }
  // Each Nothing or "" when the document is not open.
  Value GetPDDoc();
  Value GetTitle();
  // False when it was not open.
  Value Close(const MethodArguments&);

 private:
  std::shared_ptr<Session> session_;
  std::shared_ptr<OpenPdf> document_;
};

// What the document holds. Everything is False or "" once the document is closed.
class ContentObject final : public ServerObject<ContentObject> {
 public:
  ContentObject(std::shared_ptr<Session> session, std::shared_ptr<OpenPdf> document)
      : session_(std::move(session)), document_(std::move(document)) {}
  static const MemberTable<ContentObject>& Members();

  // The content is there already, and stays.
  Value Create() { return session_->IsOpen(document_); }
  // In one step; False where that cannot be done.
  Value Save(const MethodArguments& arguments);
  Value GetFileName();
  Value Close() { return session_->IsOpen(document_); }

 private:
  std::shared_ptr<Session> session_;
  std::shared_ptr<OpenPdf> document_;
};

}  // namespace kestrelon::desktop::acrobat
