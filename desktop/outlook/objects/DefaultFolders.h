// The numbers by which scripts name the default folders (OlDefaultFolders), and what kind of items
// each is for.
#pragma once

#include <optional>
#include <utility>

#include "desktop/outlook/store/MailFolder.h"

namespace kestrelon::desktop {

constexpr int32_t kInbox = 6;
constexpr int32_t kCalendar = 9;
constexpr int32_t kContacts = 10;
constexpr int32_t kTasks = 13;
constexpr int32_t kDrafts = 16;

constexpr std::pair<FolderKind, int32_t> kFoldersByKind[] = {{FolderKind::kMail, kInbox},
                                                             {FolderKind::kCalendar, kCalendar},
                                                             {FolderKind::kContacts, kContacts},
                                                             {FolderKind::kTasks, kTasks}};

// The default folder for items of a kind; nothing for a number that is no kind.
constexpr std::optional<int32_t> DefaultFolderFor(FolderKind kind) {
  for (const auto& [one, folder] : kFoldersByKind) {
    if (one == kind) return folder;
  }
  return std::nullopt;
}

// The kind of a default folder; nothing for one that is not named for its kind.
constexpr std::optional<FolderKind> KindOfDefaultFolder(int32_t default_folder) {
  for (const auto& [kind, folder] : kFoldersByKind) {
    if (folder == default_folder) return kind;
  }
  return std::nullopt;
}

}  // namespace kestrelon::desktop
