// The application, its workbooks, and a workbook.
#pragma once

#include "desktop/excel/ExcelObject.h"

namespace kestrelon::desktop::excel {

class ApplicationObject final : public ExcelObject<ApplicationObject> {
 public:
  using ExcelObject::ExcelObject;
  static const MemberTable<ApplicationObject>& Members();

  Value GetName() { return u"Microsoft Excel"; }
  Value GetVersion() { return u"16.0"; }
  Value GetVisible() { return session().visible; }
  // True hands each workbook to the user's own program.
  void PutVisible(const Value& value);
  // Kept for scripts: nothing here asks questions.
  Value GetDisplayAlerts() { return session().display_alerts; }
  void PutDisplayAlerts(const Value& value) { session().display_alerts = value.ToBoolean(); }
  Value GetWorkbooks();
  // Nothing when no workbook is open.
  Value GetActiveWorkbook();
  Value GetActiveSheet();
  // Of the active sheet; error 1004 when there is none.
  Value GetCells();
  Value Range(const MethodArguments& arguments);
  // Changes that were not saved are dropped.
  Value Quit(const MethodArguments& arguments);

 private:
  Object RequireSheet();
};

class WorkbooksObject final : public ExcelCollection<WorkbooksObject> {
 public:
  using ExcelCollection::ExcelCollection;
  static const MemberTable<WorkbooksObject>& Members();

  int32_t Size() { return static_cast<int32_t>(session().workbooks.size()); }
  Value At(int32_t index);
  String NameAt(int32_t index);
  // A new workbook with one sheet. Error 1004 for a template.
  Value Add(const MethodArguments& arguments);
  // The workbook of a file; when it is open already, that one. Error 1004 for a missing file.
  Value Open(const MethodArguments& arguments);
};

class WorkbookObject final : public ExcelObject<WorkbookObject> {
 public:
  using ExcelObject::ExcelObject;
  static const MemberTable<WorkbookObject>& Members();

  Value GetName() { return workbook().Name(); }
  Value GetFullName();
  Value GetPath();
  Value GetSaved() { return workbook().IsSaved(); }
  void PutSaved(const Value& value) { workbook().SetSaved(value.ToBoolean()); }
  // Error 1004 for a workbook that was opened from a file; so is ActiveSheet.
  Value GetWorksheets();
  Value GetActiveSheet();
  Value Activate(const MethodArguments& arguments);
  // Error 1004 for a password, which nothing here would keep.
  Value SaveAs(const MethodArguments& arguments);
  Value Save(const MethodArguments& arguments);
  // Changes are saved where SaveChanges is True, under FileName where that is given.
  Value Close(const MethodArguments& arguments);
};

}  // namespace kestrelon::desktop::excel
