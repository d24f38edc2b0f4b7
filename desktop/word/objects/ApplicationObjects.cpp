#include "desktop/word/objects/ApplicationObjects.h"

#include "desktop/storage/Paths.h"
#include "desktop/word/WordApplication.h"
#include "desktop/word/objects/StoryObjects.h"
#include "desktop/word/objects/TextObjects.h"

namespace kestrelon::desktop::word {
namespace fs = std::filesystem;
namespace {

constexpr int32_t kSaveChanges = -1;

const ParameterNames kSaveAsParameters = {u"FileName",
                                          u"FileFormat",
                                          u"LockComments",
                                          u"Password",
                                          u"AddToRecentFiles",
                                          u"WritePassword",
                                          u"ReadOnlyRecommended",
                                          u"EmbedTrueTypeFonts",
                                          u"SaveNativePictureFormat",
                                          u"SaveFormsData",
                                          u"SaveAsAOCELetter",
                                          u"Encoding",
                                          u"InsertLineBreaks",
                                          u"AllowSubstitutions",
                                          u"LineEnding",
                                          u"AddBiDiMarks"};
constexpr size_t kPassword = 3;
constexpr size_t kWritePassword = 5;

// The absolute path that an argument names. Error 4120 for an empty one.
fs::path PathArgument(const MethodArguments& arguments, size_t index) {
  const String text = arguments.Require(index).ToText();
  if (text.empty()) throw BadParameter(u"the file name is empty.");
  return AbsolutePath(PathFromText(text)).lexically_normal();
}

bool AsksToSave(const MethodArguments& arguments) {
  return arguments.Has(0) && arguments[0].ToLong() == kSaveChanges;
}

void SaveIfChanged(OpenDocument& document) {
  if (!document.IsSaved()) document.Save();
}

// A password that was silently ignored would leave a document open to all.
void RefusePassword(const MethodArguments& arguments, size_t index) {
  if (arguments.Has(index) && !arguments[index].ToText().empty()) {
    throw BadParameter(u"documents cannot be saved with a password here.");
  }
}

}  // namespace

const MemberTable<ApplicationObject>& ApplicationObject::Members() {
  static const MemberTable<ApplicationObject> table =
      MemberTable<ApplicationObject>(u"Application")
          .Property(u"", &ApplicationObject::GetName)
          .Property(u"Name", &ApplicationObject::GetName)
          .Property(u"Version", &ApplicationObject::GetVersion)
          .Property(u"Documents", &ApplicationObject::GetDocuments)
          .Property(u"ActiveDocument", &ApplicationObject::GetActiveDocument)
          .Property(u"Selection", &ApplicationObject::GetSelection)
          .Property(u"Visible", &ApplicationObject::GetVisible, &ApplicationObject::PutVisible)
          .Method(u"ChangeFileOpenDirectory", &ApplicationObject::ChangeFileOpenDirectory,
                  {u"Path"})
          .Method(u"Quit", &ApplicationObject::Quit,
                  {u"SaveChanges", u"OriginalFormat", u"RouteDocument"});
  return table;
}

Value ApplicationObject::GetDocuments() { return MakeObject<DocumentsObject>(owner()); }

Value ApplicationObject::GetActiveDocument() {
  const auto& active = owner().session->active;
  if (active == nullptr) {
    throw AutomationError(kNoDocumentOpen,
                          u"This command is not available because no document is open.");
  }
  return MakeObject<DocumentObject>(Owner{owner().session, active});
}

Value ApplicationObject::GetSelection() {
  const auto& active = owner().session->active;
  if (active == nullptr) return Object();
  return MakeObject<SelectionObject>(Owner{owner().session, active});
}

void ApplicationObject::PutVisible(const Value& value) {
  Session& session = *owner().session;
  session.visible = value.ToBoolean();
  if (session.visible) session.Show();
}

Value ApplicationObject::ChangeFileOpenDirectory(const MethodArguments& arguments) {
  Session& session = *owner().session;
  const fs::path folder = session.Resolve(arguments.Require(0).ToText());
  std::error_code ignored;
  if (!fs::is_directory(folder, ignored)) {
    throw AutomationError(kNoSuchFolder, u"Cannot change to the folder " + TextFromPath(folder) +
                                             u": it does not exist. Check its name.");
  }
  session.folder = folder;
  return {};
}

Value ApplicationObject::Quit(const MethodArguments& arguments) {
  Session& session = *owner().session;
  if (AsksToSave(arguments)) {
    for (const auto& document : session.documents) SaveIfChanged(*document);
  }
  session.End();
  return {};
}

const MemberTable<DocumentsObject>& DocumentsObject::Members() {
  static const MemberTable<DocumentsObject> table =
      MemberTable<DocumentsObject>(u"Documents")
          .Property(u"Count", &DocumentsObject::GetCount)
          .Method(u"Item", &DocumentsObject::ItemOf, {u"Index"})
          .Method(u"", &DocumentsObject::ItemOf, {u"Index"})
          .Method(u"Add", &DocumentsObject::Add,
                  {u"Template", u"NewTemplate", u"DocumentType", u"Visible"})
          .Method(u"Open", &DocumentsObject::Open,
                  {u"FileName", u"ConfirmConversions", u"ReadOnly", u"AddToRecentFiles",
                   u"PasswordDocument", u"PasswordTemplate", u"Revert", u"WritePasswordDocument",
                   u"WritePasswordTemplate", u"Format", u"Encoding", u"Visible", u"OpenAndRepair",
                   u"DocumentDirection", u"NoEncodingDialog", u"XMLTransform"});
  return table;
}

Value DocumentsObject::At(int32_t index) {
  const auto& documents = owner().session->documents;
  return MakeObject<DocumentObject>(
      Owner{owner().session, documents[static_cast<size_t>(index - 1)]});
}

Value DocumentsObject::ItemOf(const MethodArguments& arguments) {
  if (!arguments.Require(0).IsString()) return Item(arguments);
  const String name = arguments[0].ToText();
  for (const auto& document : owner().session->documents) {
    if (EqualIgnoringCase(document->Name(), name) || TextFromPath(document->path()) == name) {
      return MakeObject<DocumentObject>(Owner{owner().session, document});
    }
  }
  throw NoSuchMember();
}

Value DocumentsObject::Add(const MethodArguments& arguments) {
  Session& session = *owner().session;
  const fs::path path = session.Resolve(arguments.Require(0).ToText());
  auto engine =
      NamingMissing(path, kCannotReadTemplate, u"The template", [&] { return ReadDocument(path); });
  const String name = u"Document" + Value(++session.documents_named).ToText();
  session.Add(std::make_shared<OpenDocument>(std::move(engine), name));
  return MakeObject<DocumentObject>(Owner{owner().session, session.active});
}

Value DocumentsObject::Open(const MethodArguments& arguments) {
  Session& session = *owner().session;
  const fs::path path = session.Resolve(arguments.Require(0).ToText());
  if (auto open = session.FindByPath(path)) {
    session.active = std::move(open);
  } else {
    auto engine =
        NamingMissing(path, kFileNotOpened, u"The file", [&] { return ReadDocument(path); });
    auto document = std::make_shared<OpenDocument>(std::move(engine), String());
    document->BindToFile(path, std::nullopt);
    session.Add(std::move(document));
  }
  return MakeObject<DocumentObject>(Owner{owner().session, session.active});
}

const MemberTable<DocumentObject>& DocumentObject::Members() {
  static const MemberTable<DocumentObject> table =
      MemberTable<DocumentObject>(u"Document")
          .Property(u"", &DocumentObject::GetName)
          .Property(u"Name", &DocumentObject::GetName)
          .Property(u"FullName", &DocumentObject::GetFullName)
          .Property(u"Path", &DocumentObject::GetPath)
          .Property(u"Saved", &DocumentObject::GetSaved, &DocumentObject::PutSaved)
          .Property(u"Application", &DocumentObject::GetApplication)
          .Property(u"Content", &DocumentObject::GetContent)
          .Property(u"Tables", &DocumentObject::GetTables)
          .Property(u"StoryRanges", &DocumentObject::GetStoryRanges)
          .Method(u"Range", &DocumentObject::Range, {u"Start", u"End"})
          .Method(u"Select", &DocumentObject::Select)
          .Method(u"Activate", &DocumentObject::Activate)
          .Method(u"Save", &DocumentObject::Save)
          .Method(u"SaveAs", &DocumentObject::SaveAs, kSaveAsParameters)
          .Method(u"SaveAs2", &DocumentObject::SaveAs, kSaveAsParameters)
          .Method(u"ExportAsFixedFormat", &DocumentObject::ExportAsFixedFormat,
                  {u"OutputFileName", u"ExportFormat"})
          .Method(u"Close", &DocumentObject::Close,
                  {u"SaveChanges", u"OriginalFormat", u"RouteDocument"});
  return table;
}

Value DocumentObject::GetFullName() {
  const fs::path& path = document().path();
  return path.empty() ? document().Name() : TextFromPath(path);
}

Value DocumentObject::GetApplication() {
  return MakeObject<ApplicationObject>(Owner{owner().session, nullptr});
}

Value DocumentObject::GetContent() {
  Story& main = document().engine().Main();
  return MakeRange(owner(), main, {0, main.Length()});
}

Value DocumentObject::GetTables() {
  Story& main = document().engine().Main();
  return MakeTables(owner(), main, {0, main.Length()});
}

Value DocumentObject::GetStoryRanges() { return MakeObject<StoryRangesObject>(owner()); }

Value DocumentObject::Range(const MethodArguments& arguments) {
  Story& main = document().engine().Main();
  const int32_t start = arguments.Has(0) ? arguments[0].ToLong() : 0;
  const int32_t end = arguments.Has(1) ? arguments[1].ToLong() : main.Length();
  return MakeRange(owner(), main, CheckedSpan(main, start, end));
}

Value DocumentObject::Select(const MethodArguments&) {
  Story& main = document().engine().Main();
  document().Select(main, {0, main.Length()});
  owner().session->active = owner().document;
  return {};
}

Value DocumentObject::Activate(const MethodArguments&) {
  owner().session->active = owner().document;
  return {};
}

Value DocumentObject::Save(const MethodArguments&) {
  document().Save();
  return {};
}

Value DocumentObject::SaveAs(const MethodArguments& arguments) {
  RefusePassword(arguments, kPassword);
  RefusePassword(arguments, kWritePassword);
  std::optional<FileFormat> format;
  if (arguments.Has(1)) format = FormatOfNumber(arguments[1].ToLong());
  document().SaveAs(ResolveSaveTarget(PathArgument(arguments, 0), format));
  return {};
}

Value DocumentObject::ExportAsFixedFormat(const MethodArguments& arguments) {
  if (arguments.Require(1).ToLong() != static_cast<int32_t>(FileFormat::kPdf)) {
    throw BadParameter(u"ExportFormat is 17 (PDF); nothing else is exported here.");
  }
  document().SaveAs(ResolveSaveTarget(PathArgument(arguments, 0), FileFormat::kPdf));
  return {};
}

Value DocumentObject::Close(const MethodArguments& arguments) {
  if (AsksToSave(arguments)) SaveIfChanged(document());
  owner().session->Remove(owner().document);
  return {};
}

}  // namespace kestrelon::desktop::word

namespace kestrelon::desktop {

Object CreateWordApplication() {
  return Object(std::make_shared<word::ApplicationObject>(
      word::Owner{std::make_shared<word::Session>(), nullptr}));
}

}  // namespace kestrelon::desktop
