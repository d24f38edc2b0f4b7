#include "desktop/excel/Session.h"

#include <algorithm>
#include <array>
#include <utility>

#include "desktop/converter/Converter.h"
#include "desktop/excel/ExcelErrors.h"
#include "desktop/opener/Opener.h"
#include "desktop/storage/AtomicFile.h"
#include "desktop/storage/Paths.h"

namespace kestrelon::desktop::excel {
namespace fs = std::filesystem;
namespace {

// Formats that Excel knows by these extensions and that are not written here.
constexpr std::array<StringView, 16> kNotWritten = {
    u".xlsm", u".xlsb", u".xltx", u".xltm", u".xlt", u".xlam", u".xla", u".csv",
    u".txt",  u".prn",  u".ods",  u".pdf",  u".htm", u".html", u".xml", u".mht"};
constexpr int32_t kNormalFormat = -4143;
constexpr Area kMostOfXls = {1, 1, 65'536, 256};

String ExtensionOf(const fs::path& path) { return LowerCase(TextFromPath(path.extension())); }

const char* ExtensionOf(FileFormat format) {
  return format == FileFormat::kXlsx ? ".xlsx" : ".xls";
}

// Completes the path by what the format, or the lack of one, makes of it.
FileFormat ResolveFormat(fs::path& path, std::optional<FileFormat> format) {
  const String extension = ExtensionOf(path);
  std::optional<FileFormat> named;
  if (extension == u".xlsx") named = FileFormat::kXlsx;
  if (extension == u".xls") named = FileFormat::kXls;
  const bool is_known =
      std::find(kNotWritten.begin(), kNotWritten.end(), extension) != kNotWritten.end();
  if (is_known || (format && named && format != named)) {
    throw ExcelError(
        u"This extension cannot be used with the file formats that are written here. "
        u"Save as .xlsx (FileFormat 51) or .xls (56).");
  }
  const FileFormat chosen = format.value_or(named.value_or(FileFormat::kXlsx));
  if (!named) path += ExtensionOf(chosen);
  return chosen;
}

void RequireFits(const Sheets& sheets) {
  for (const auto& sheet : sheets) {
    const Area used = sheet->UsedArea();
    if (used.bottom > kMostOfXls.bottom || used.right > kMostOfXls.right) {
      throw ExcelError(u"The worksheet " + sheet->name +
                       u" has more than the 65,536 rows or 256 columns of an .xls file. Save it "
                       u"as .xlsx.");
    }
  }
}

}  // namespace

OpenWorkbook::OpenWorkbook(String name) : name_(std::move(name)) {
  AddSheet();
  edits_ = 0;
}

String OpenWorkbook::Name() const { return path_.empty() ? name_ : TextFromPath(path_.filename()); }

Sheets& OpenWorkbook::sheets() {
  if (!is_read_) {
    throw ExcelError(u"The sheets of " + Name() +
                     u" cannot be read or written here: it was opened from a file, which can be "
                     u"shown, saved in another format and closed. Cells are written in a new "
                     u"workbook (Workbooks.Add).");
  }
  return sheets_;
}

void OpenWorkbook::AddSheet() {
  const String name = u"Sheet" + Value(++sheets_named_).ToText();
  const bool is_taken = std::any_of(sheets_.begin(), sheets_.end(), [&](const auto& sheet) {
    return EqualIgnoringCase(sheet->name, name);
  });
  if (is_taken) return AddSheet();
  sheets_.insert(sheets_.begin() + static_cast<std::ptrdiff_t>(active_sheet_),
                 std::make_shared<Sheet>(name));
  NoteEdit();
}

void OpenWorkbook::Write(const fs::path& path, FileFormat format) {
  const auto converted =
      format == FileFormat::kXlsx ? ConversionFormat::kXlsx : ConversionFormat::kXls;
  if (!is_read_) {
    // What is in that format already stays as it is, whatever a conversion would change.
    if (ExtensionOf(path_) == ExtensionOf(path))
      return WriteFileAtomically(path, ReadWholeFile(path_));
    return Converter::OfThisProcess().Convert(path_, path, converted);
  }
  const std::string package = WorkbookPackage(sheets_, active_sheet_);
  if (format == FileFormat::kXlsx) return WriteFileAtomically(path, package);
  RequireFits(sheets_);
  const fs::path name = path.stem() += ".xlsx";
  Converter::OfThisProcess().Convert(package, name, path, converted);
}

void OpenWorkbook::SaveAs(fs::path path, std::optional<FileFormat> format) {
  try {
    std::error_code ignored;
    const String name = LowerCase(TextFromPath(path.filename()));
    if (name.empty() || name == u".xlsx" || name == u".xls") {
      throw ExcelError(u"The name of the file is missing. Add it to the folder.");
    }
    const FileFormat chosen = ResolveFormat(path, format);
    if (fs::is_directory(path, ignored) || fs::is_other(path, ignored)) {
      throw ExcelError(u"It is a folder or device and cannot be replaced. Give another file name.");
    }
    Write(path, chosen);
    path_ = path;
    format_ = chosen;
    saved_edits_ = edits_;
  } catch (const AutomationError& error) {
    throw ExcelError(u"Microsoft Excel cannot save the file '" + TextFromPath(path) + u"'. " +
                     error.description());
  }
}

void OpenWorkbook::Save() {
  if (!is_read_) return;
  if (path_.empty()) {
    throw ExcelError(Name() +
                     u" was never saved and has no file name. Use SaveAs, or close it "
                     u"without saving.");
  }
  SaveAs(path_, format_);
}

fs::path OpenWorkbook::WritePrivateCopy() {
  PrivateFolder folder("kestrelon-excel-");
  fs::path name = PathFromText(Name());
  const fs::path copy = folder.path() / name.replace_extension(".xlsx");
  WriteFileAtomically(copy, WorkbookPackage(sheets_, active_sheet_));
  folder.Keep();
  return copy;
}

void OpenWorkbook::ShowToUser() {
  if (shown_edits_ == edits_ && shown_path_ == path_) return;
  const bool is_in_file = !is_read_ || (!path_.empty() && IsSaved());
  const fs::path file = is_in_file ? path_ : WritePrivateCopy();
  shown_edits_ = edits_;
  shown_path_ = path_;
  if (OpenForUser(file.string()) == OpenOutcome::kCannotStart) {
    throw ExcelError(
        u"The program that shows workbooks cannot be started; check KESTRELON_OPENER. "
        u"The workbook is in " +
        TextFromPath(file) + u".");
  }
}

FileFormat FormatOfNumber(int32_t number) {
  if (number == static_cast<int32_t>(FileFormat::kXlsx)) return FileFormat::kXlsx;
  if (number == static_cast<int32_t>(FileFormat::kXls) || number == kNormalFormat) {
    return FileFormat::kXls;
  }
  throw ExcelError(u"FileFormat " + Value(number).ToText() +
                   u" cannot be written. Use 51 (.xlsx) or 56 (.xls).");
}

Session::~Session() {
  if (!visible || !running) return;
  try {
    for (const auto& workbook : workbooks) {
      if (HasOpener()) workbook->ShowToUser();
    }
  } catch (const std::exception&) {
    // There is nobody left to tell.
  }
}

void Session::Add(std::shared_ptr<OpenWorkbook> workbook) {
  workbooks.push_back(workbook);
  active = std::move(workbook);
}

void Session::Remove(const std::shared_ptr<OpenWorkbook>& workbook) {
  workbook->Close();
  workbooks.erase(std::find(workbooks.begin(), workbooks.end(), workbook));
  if (active == workbook) active = workbooks.empty() ? nullptr : workbooks.back();
}

std::shared_ptr<OpenWorkbook> Session::FindByPath(const fs::path& path) const {
  for (const auto& workbook : workbooks) {
    std::error_code error;
    if (!workbook->path().empty() && fs::equivalent(workbook->path(), path, error)) return workbook;
  }
  return nullptr;
}

void Session::Show() {
  if (!HasOpener()) return;
  for (const auto& workbook : workbooks) {
    if (!workbook->IsBlank()) workbook->ShowToUser();
  }
}

void Session::End() {
  running = false;
  for (const auto& workbook : workbooks) workbook->Close();
  workbooks.clear();
  active.reset();
}

}  // namespace kestrelon::desktop::excel
