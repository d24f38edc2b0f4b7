// The order of a folder's items: the file ".kestrelon-order", one file name a line, oldest first.
//
// Of several lines with one name the last counts: the item was deleted and made anew. The file is
// not synced: after a power loss, items that it misses come last, by time. It is a service to the
// user, not data: what cannot be written (a folder that is read only) is left.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace kestrelon::desktop {

class FolderOrder {
 public:
  // Without lines when the file is not there.
  explicit FolderOrder(const std::filesystem::path& folder);
  FolderOrder(const FolderOrder&) = delete;
  FolderOrder& operator=(const FolderOrder&) = delete;

  // All of them as they stand; they live as long as this object.
  const std::vector<std::string_view>& lines() const { return lines_; }

 private:
  std::string text_;
  std::vector<std::string_view> lines_;
};

// Both under the folder's lock. Names that hold a line break are left out.
void AppendToOrder(int folder, const std::vector<std::string>& names);
void RewriteOrder(const std::filesystem::path& folder, const std::vector<std::string>& names);

}  // namespace kestrelon::desktop
