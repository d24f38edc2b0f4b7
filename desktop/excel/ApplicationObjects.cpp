#include "desktop/excel/ApplicationObjects.h"

#include "desktop/excel/ExcelApplication.h"
#include "desktop/excel/SheetObjects.h"
#include "desktop/storage/Paths.h"

namespace kestrelon::desktop::excel {
namespace fs = std::filesystem;
namespace {

constexpr int32_t kTemplateOfOneSheet = -4167;

// The absolute path that an argument names. Error 1004 for an empty one.
fs::path PathArgument(const MethodArguments& arguments, size_t index) {
  const String text = arguments.Require(index).ToText();
  if (text.empty()) throw ExcelError(u"The file name is empty. Give the path of the file.");
  return AbsolutePath(PathFromText(text)).lexically_normal();
}

}  // namespace

const MemberTable<ApplicationObject>& ApplicationObject::Members() {
  static const MemberTable<ApplicationObject> table =
      MemberTable<ApplicationObject>(u"Application")
          .Property(u"", &ApplicationObject::GetName)
          .Property(u"Name", &ApplicationObject::GetName)
          .Property(u"Version", &ApplicationObject::GetVersion)
          .Property(u"Visible", &ApplicationObject::GetVisible, &ApplicationObject::PutVisible)
          .Property(u"DisplayAlerts", &ApplicationObject::GetDisplayAlerts,
                    &ApplicationObject::PutDisplayAlerts)
          .Property(u"Workbooks", &ApplicationObject::GetWorkbooks)
          .Property(u"ActiveWorkbook", &ApplicationObject::GetActiveWorkbook)
          .Property(u"ActiveSheet", &ApplicationObject::GetActiveSheet)
          .Property(u"Cells", &ApplicationObject::GetCells)
          .Method(u"Range", &ApplicationObject::Range, {u"Cell1", u"Cell2"})
          .Method(u"Quit", &ApplicationObject::Quit);
  return table;
}

void ApplicationObject::PutVisible(const Value& value) {
  session().visible = value.ToBoolean();
  if (session().visible) session().Show();
}

Value ApplicationObject::GetWorkbooks() { return MakeObject<WorkbooksObject>(owner()); }

Value ApplicationObject::GetActiveWorkbook() {
  if (session().active == nullptr) return Object();
  return MakeObject<WorkbookObject>(Owner{owner().session, session().active, nullptr});
}

Value ApplicationObject::GetActiveSheet() {
  const Object active = GetActiveWorkbook().ToObject();
  return active ? active.Get(u"ActiveSheet") : Value(Object());
}

Object ApplicationObject::RequireSheet() {
  const Object active = GetActiveSheet().ToObject();
  if (!active) throw ExcelError(u"No workbook is open. Make one with Workbooks.Add.");
  return active;
}

Value ApplicationObject::GetCells() { return RequireSheet().Get(u"Cells"); }

Value ApplicationObject::Range(const MethodArguments& arguments) {
  return RequireSheet().Call(u"Range", arguments.Require(0), arguments[1]);
}

Value ApplicationObject::Quit(const MethodArguments&) {
  session().End();
  return {};
}

const MemberTable<WorkbooksObject>& WorkbooksObject::Members() {
  static const MemberTable<WorkbooksObject> table =
      CollectionMembers(u"Workbooks")
          .Method(u"Add", &WorkbooksObject::Add, {u"Template"})
          .Method(u"Open", &WorkbooksObject::Open,
                  {u"FileName", u"UpdateLinks", u"ReadOnly", u"Format", u"Password",
                   u"WriteResPassword", u"IgnoreReadOnlyRecommended", u"Origin", u"Delimiter",
                   u"Editable", u"Notify", u"Converter", u"AddToMru", u"Local", u"CorruptLoad"});
  return table;
}

Value WorkbooksObject::At(int32_t index) {
  const auto& workbook = session().workbooks[static_cast<size_t>(index) - 1];
  return MakeObject<WorkbookObject>(Owner{owner().session, workbook, nullptr});
}

String WorkbooksObject::NameAt(int32_t index) {
  return session().workbooks[static_cast<size_t>(index) - 1]->Name();
}

Value WorkbooksObject::Add(const MethodArguments& arguments) {
  if (arguments.Has(0) &&
      (arguments[0].IsString() || arguments[0].ToLong() != kTemplateOfOneSheet)) {
    throw ExcelError(u"Workbooks are not made on templates here. Leave the template out.");
  }
  const String number = Value(++session().workbooks_named).ToText();
  session().Add(std::make_shared<OpenWorkbook>(u"Book" + number));
  return At(Size());
}

Value WorkbooksObject::Open(const MethodArguments& arguments) {
  const fs::path path = PathArgument(arguments, 0);
  std::error_code ignored;
  if (!fs::is_regular_file(path, ignored)) {
    throw ExcelError(u"Sorry, we couldn't find " + TextFromPath(path) +
                     u". Is it possible it was moved, renamed or deleted?");
  }
  std::shared_ptr<OpenWorkbook> workbook = session().FindByPath(path);
  if (workbook == nullptr) {
    workbook = std::make_shared<OpenWorkbook>(path);
    session().Add(workbook);
  }
  session().active = workbook;
  if (session().visible) session().Show();
  return MakeObject<WorkbookObject>(Owner{owner().session, workbook, nullptr});
}

const MemberTable<WorkbookObject>& WorkbookObject::Members() {
  static const MemberTable<WorkbookObject> table =
      MemberTable<WorkbookObject>(u"Workbook")
          .Property(u"", &WorkbookObject::GetName)
          .Property(u"Name", &WorkbookObject::GetName)
          .Property(u"FullName", &WorkbookObject::GetFullName)
          .Property(u"Path", &WorkbookObject::GetPath)
          .Property(u"Saved", &WorkbookObject::GetSaved, &WorkbookObject::PutSaved)
          .Property(u"Worksheets", &WorkbookObject::GetWorksheets)
          .Property(u"Sheets", &WorkbookObject::GetWorksheets)
          .Property(u"ActiveSheet", &WorkbookObject::GetActiveSheet)
          .Method(u"Activate", &WorkbookObject::Activate)
          .Method(u"SaveAs", &WorkbookObject::SaveAs,
                  {u"FileName", u"FileFormat", u"Password", u"WriteResPassword",
                   u"ReadOnlyRecommended", u"CreateBackup", u"AccessMode", u"ConflictResolution",
                   u"AddToMru", u"TextCodepage", u"TextVisualLayout", u"Local"})
          .Method(u"Save", &WorkbookObject::Save)
          .Method(u"Close", &WorkbookObject::Close,
                  {u"SaveChanges", u"FileName", u"RouteWorkbook"});
  return table;
}

Value WorkbookObject::GetFullName() {
  const fs::path& path = workbook().path();
  return path.empty() ? workbook().Name() : TextFromPath(path);
}

Value WorkbookObject::GetPath() { return TextFromPath(workbook().path().parent_path()); }

Value WorkbookObject::GetWorksheets() {
  workbook().sheets();  // error 1004 where there are none here
  return MakeObject<WorksheetsObject>(owner());
}

Value WorkbookObject::GetActiveSheet() {
  const auto& sheet = workbook().sheets()[workbook().active_sheet()];
  return MakeObject<WorksheetObject>(Owner{owner().session, owner().workbook, sheet});
}

Value WorkbookObject::Activate(const MethodArguments&) {
  session().active = owner().workbook;
  return {};
}

Value WorkbookObject::SaveAs(const MethodArguments& arguments) {
  for (const size_t password : {size_t{2}, size_t{3}}) {
    if (arguments.Has(password) && !arguments[password].ToText().empty()) {
      throw ExcelError(u"Workbooks cannot be saved with a password here.");
    }
  }
  std::optional<FileFormat> format;
  if (arguments.Has(1)) format = FormatOfNumber(arguments[1].ToLong());
  workbook().SaveAs(PathArgument(arguments, 0), format);
  return {};
}

Value WorkbookObject::Save(const MethodArguments&) {
  workbook().Save();
  return {};
}

Value WorkbookObject::Close(const MethodArguments& arguments) {
  if (arguments.Has(0) && arguments[0].ToBoolean()) {
    if (arguments.Has(1)) {
      workbook().SaveAs(PathArgument(arguments, 1), std::nullopt);
    } else if (!workbook().IsSaved()) {
      workbook().Save();
    }
  }
  session().Remove(owner().workbook);
  return {};
}

}  // namespace kestrelon::desktop::excel

namespace kestrelon::desktop {

Object CreateExcelApplication() {
  return Object(std::make_shared<excel::ApplicationObject>(
      excel::Owner{std::make_shared<excel::Session>(), nullptr, nullptr}));
}

}  // namespace kestrelon::desktop
