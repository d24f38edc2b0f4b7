// One running Excel: its workbooks, new ones with their cells and files that were opened.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

#include "automation/Text.h"
#include "desktop/excel/WorkbookPackage.h"
#include "desktop/locale/UserLocale.h"

namespace kestrelon::desktop::excel {

// The formats of SaveAs that are written here, under Excel's numbers.
enum class FileFormat : int32_t { kXlsx = 51, kXls = 56 };

class OpenWorkbook {
 public:
  // A new one with one empty sheet; `name` stands until it has a file.
  explicit OpenWorkbook(String name);
  // That of a file. It is shown, converted and closed, but not read: it has no sheets here.
  explicit OpenWorkbook(std::filesystem::path path) : path_(std::move(path)), is_read_(false) {}

  bool closed() const { return closed_; }
  void Close() { closed_ = true; }

  // "" when it was never saved.
  const std::filesystem::path& path() const { return path_; }
  String Name() const;
  // Error 1004 for a workbook that was opened from a file.
  Sheets& sheets();
  size_t active_sheet() const { return active_sheet_; }
  void Activate(size_t sheet) { active_sheet_ = sheet; }
  // A new sheet before the active one, which it becomes.
  void AddSheet();

  // After every change.
  void NoteEdit() { ++edits_; }
  bool IsSaved() const { return edits_ == saved_edits_; }
  void SetSaved(bool saved) { saved_edits_ = saved ? edits_ : -1; }
  // New, and nothing was done to it yet.
  bool IsBlank() const { return is_read_ && path_.empty() && edits_ == 0; }

  // Writes it; the file is its own from then on. Without a format the extension decides, .xlsx
  // where there is none. Error 1004, which names the file, whatever fails; nothing is half written.
  void SaveAs(std::filesystem::path path, std::optional<FileFormat> format);
  // Error 1004 when it was never saved.
  void Save();
  // Hands it to the opener, once per state: its file, or a private copy, which stays for the user,
  // where the file does not hold what the workbook does. Error 1004, which names that file, when
  // the opener cannot be started.
  void ShowToUser();

 private:
  void Write(const std::filesystem::path& path, FileFormat format);
  std::filesystem::path WritePrivateCopy();

  String name_;
  std::filesystem::path path_;
  std::optional<FileFormat> format_;
  bool is_read_ = true;
  Sheets sheets_;
  size_t active_sheet_ = 0;
  int32_t sheets_named_ = 0;
  int64_t edits_ = 0;
  int64_t saved_edits_ = 0;
  int64_t shown_edits_ = -1;
  std::filesystem::path shown_path_;
  bool closed_ = false;
};

// Error 1004 for a number that is not written here.
FileFormat FormatOfNumber(int32_t number);

struct Session {
  bool running = true;
  bool visible = false;
  bool display_alerts = true;
  int32_t workbooks_named = 0;
  const NumberSigns number_signs = UserNumberSigns();
  std::vector<std::shared_ptr<OpenWorkbook>> workbooks;  // in the order of their opening
  std::shared_ptr<OpenWorkbook> active;

  Session() = default;
  // A visible Excel that nobody holds any more has been left to the user: what was done since it
  // became visible is shown.
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  void Add(std::shared_ptr<OpenWorkbook> workbook);
  void Remove(const std::shared_ptr<OpenWorkbook>& workbook);
  std::shared_ptr<OpenWorkbook> FindByPath(const std::filesystem::path& path) const;
  // Every workbook that holds something goes to the user; nothing happens without an opener.
  void Show();
  // From now on everything of this Excel is error 462.
  void End();
};

}  // namespace kestrelon::desktop::excel
