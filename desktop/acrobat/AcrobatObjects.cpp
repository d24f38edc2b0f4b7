#include "desktop/acrobat/AcrobatObjects.h"

#include <algorithm>

#include "desktop/converter/ConvertedFile.h"
#include "desktop/converter/Converter.h"
#include "desktop/opener/Opener.h"
#include "desktop/storage/AtomicFile.h"
#include "desktop/storage/Paths.h"

namespace kestrelon::desktop::acrobat {
namespace fs = std::filesystem;
namespace {

// A PDF as it is, anything else converted.
std::string ReadAsPdf(const fs::path& path) {
  std::error_code ignored;
  if (!fs::is_regular_file(path, ignored)) throw AutomationError(kFileNotFound);
  std::string content = ReadWholeFile(path);
  if (HasSignature(content, ConversionFormat::kPdf)) return content;
  return Converter::OfThisProcess().ConvertToBytes(path, ConversionFormat::kPdf);
}

// Not in place of a folder, nor of a device, which others would miss.
bool CanBeReplaced(const fs::path& path) {
  std::error_code ignored;
  const fs::file_status status = fs::status(path, ignored);
  return path.has_filename() && (!fs::exists(status) || fs::is_regular_file(status));
}

bool ShowCopy(const OpenPdf& document) {
  PrivateFolder folder("kestrelon-acrobat-");
  const fs::path copy = folder.path() / PathFromText(document.file_name).replace_extension(".pdf");
  WriteFileAtomically(copy, document.content);
  if (OpenForUser(copy.string()) != OpenOutcome::kStarted) return false;
  folder.Keep();
  return true;
}

Value MakeDocument(const std::shared_ptr<Session>& session,
                   const std::shared_ptr<OpenPdf>& document) {
  return Object(std::make_shared<DocumentObject>(session, document));
}

}  // namespace

bool Session::IsOpen(const std::shared_ptr<OpenPdf>& document) const {
  return std::find(documents.begin(), documents.end(), document) != documents.end();
}

void Session::Close(const std::shared_ptr<OpenPdf>& document) { std::erase(documents, document); }

const MemberTable<ApplicationObject>& ApplicationObject::Members() {
  static const MemberTable<ApplicationObject> table =
      MemberTable<ApplicationObject>(u"App")
          .Property(u"GetNumAVDocs", &ApplicationObject::GetNumAVDocs)
          .Property(u"GetActiveDoc", &ApplicationObject::GetActiveDoc)
          .Method(u"GetAVDoc", &ApplicationObject::GetAVDoc, {u"nIndex"})
          .Method(u"Exit", &ApplicationObject::Exit)
          .Method(u"Show", &ApplicationObject::Show)
          .Method(u"Hide", &ApplicationObject::Hide);
  return table;
}

Value ApplicationObject::GetNumAVDocs() { return static_cast<int32_t>(session_->documents.size()); }

Value ApplicationObject::GetActiveDoc() {
  if (session_->documents.empty()) return Object();
  return MakeDocument(session_, session_->documents.back());
}

Value ApplicationObject::GetAVDoc(const MethodArguments& arguments) {
  const int32_t index = arguments.Require(0).ToLong();
  if (index < 0 || static_cast<size_t>(index) >= session_->documents.size()) return Object();
  return MakeDocument(session_, session_->documents[static_cast<size_t>(index)]);
}

Value ApplicationObject::Exit(const MethodArguments&) {
  session_->documents.clear();
  return true;
}

Value ApplicationObject::Show(const MethodArguments&) {
  bool shown = true;
  for (const auto& document : session_->documents) {
    const auto failed = IgnoreFailures([&] { shown = ShowCopy(*document) && shown; });
    if (failed) shown = false;
  }
  return shown;
}

const MemberTable<DocumentObject>& DocumentObject::Members() {
  static const MemberTable<DocumentObject> table =
      MemberTable<DocumentObject>(u"AVDoc")
          .Method(u"Open", &DocumentObject::Open, {u"szFullPath", u"szTempTitle"})
          .Property(u"IsValid", &DocumentObject::IsValid)
          .Property(u"GetPDDoc", &DocumentObject::GetPDDoc)
          .Property(u"GetTitle", &DocumentObject::GetTitle)
          .Method(u"Close", &DocumentObject::Close, {u"bNoSave"});
  return table;
}

Value DocumentObject::Open(const MethodArguments& arguments) {
  const fs::path path = PathFromText(arguments.Require(0).ToText());
  const String title = arguments.Has(1) ? arguments[1].ToText() : String();
  return !IgnoreFailures([&] {
    const String file_name = TextFromPath(path.filename());
    document_ = std::make_shared<OpenPdf>(
        OpenPdf{file_name, title.empty() ? file_name : title, ReadAsPdf(path)});
    session_->documents.push_back(document_);
  });
}

Value DocumentObject::GetPDDoc() {
  if (!session_->IsOpen(document_)) return Object();
  return Object(std::make_shared<ContentObject>(session_, document_));
}

Value DocumentObject::GetTitle() {
  return session_->IsOpen(document_) ? document_->title : String();
}

Value DocumentObject::Close(const MethodArguments&) {
  const bool was_open = session_->IsOpen(document_);
  session_->Close(document_);
  return was_open;
}

const MemberTable<ContentObject>& ContentObject::Members() {
  static const MemberTable<ContentObject> table =
      MemberTable<ContentObject>(u"PDDoc")
          .Property(u"Create", &ContentObject::Create)
          .Method(u"Save", &ContentObject::Save, {u"nType", u"szFullPath"})
          .Property(u"GetFileName", &ContentObject::GetFileName)
          .Property(u"Close", &ContentObject::Close);
  return table;
}

Value ContentObject::Save(const MethodArguments& arguments) {
  const fs::path path = PathFromText(arguments.Require(1).ToText());
  if (!session_->IsOpen(document_) || !CanBeReplaced(path)) return false;
  return !IgnoreFailures([&] { WriteFileAtomically(path, document_->content); });
}

Value ContentObject::GetFileName() {
  return session_->IsOpen(document_) ? document_->file_name : String();
}

}  // namespace kestrelon::desktop::acrobat
