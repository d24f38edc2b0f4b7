// Workbooks as packages (.xlsx).
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "desktop/excel/Sheet.h"

namespace kestrelon::desktop::excel {

using Sheets = std::vector<std::shared_ptr<Sheet>>;

// The bytes of a package with these sheets, `active` being the one on top. What XML forbids is left
// out of texts and names.
std::string WorkbookPackage(const Sheets& sheets, size_t active);

}  // namespace kestrelon::desktop::excel
