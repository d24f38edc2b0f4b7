#include "desktop/outlook/store/UserSession.h"

#include <unistd.h>

#include <cerrno>

#include "desktop/outlook/store/EntryIds.h"
#include "desktop/outlook/store/Mailbox.h"
#include "desktop/storage/AtomicFile.h"
#include "desktop/storage/Paths.h"

namespace kestrelon::desktop {
namespace fs = std::filesystem;
namespace {

fs::path SessionFolder() { return MailboxFolder() / ".kestrelon"; }

void WriteSessionFile(std::string_view name, std::string_view content) {
  const fs::path folder = SessionFolder();
  try {
    MakeFolder(folder);
    WriteFileAtomically(folder / name, content);
  } catch (const AutomationError& error) {
    throw SavingError(error, u"What is open and selected", folder);
  }
}

}  // namespace

bool IsOutlookOpen() {
  std::error_code error;
  return fs::exists(SessionFolder() / "open", error);
}

void MarkOutlookOpen(bool is_open) {
  if (is_open) return WriteSessionFile("open", "");
  const fs::path file = SessionFolder() / "open";
  if (unlink(file.c_str()) != 0 && errno != ENOENT && errno != ENOTDIR) {
    throw SavingError(FileError(errno, file), u"What is open and selected", SessionFolder());
  }
}

std::vector<String> SelectedItems() {
  const fs::path file = SessionFolder() / "selection";
  std::error_code error;
  std::vector<String> entry_ids;
  if (!fs::exists(file, error)) return entry_ids;
  for (String& line : Split(FromUtf8(ReadWholeFile(file)), u"\n")) {
    if (PathFromEntryId(EntryType::kItem, line)) entry_ids.push_back(std::move(line));
  }
  return entry_ids;
}

void SelectItems(const std::vector<String>& entry_ids) {
  std::string lines;
  for (const String& entry_id : entry_ids) lines += ToUtf8(entry_id) + '\n';
  WriteSessionFile("selection", lines);
}

}  // namespace kestrelon::desktop
