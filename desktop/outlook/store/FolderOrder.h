// The order of a folder's items: the file ".kestrelon-order", one file name a line, oldest first.
//
// Of several lines with one name the last counts: the item was deleted and made anew. The file is
// not synced: after a power loss, items that it misses come last, by time. It is a service to the
// user, not data: what cannot be written (a folder that is read only) is left.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace kestrelon::desktop {

// All lines as they stand.
std::vector<std::string> ReadOrder(const std::filesystem::path& folder);

// Both under the folder's lock. Names that hold a line break are left out.
void AppendToOrder(int folder, const std::vector<std::string>& names);
void RewriteOrder(const std::filesystem::path& folder, const std::vector<std::string>& names);

}  // namespace kestrelon::desktop
