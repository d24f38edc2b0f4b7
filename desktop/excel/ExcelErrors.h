// The errors of Excel's objects.
#pragma once

#include <cstdint>

#include "automation/AutomationError.h"
#include "automation/Text.h"

namespace kestrelon::desktop::excel {

constexpr int32_t kExcelError = 1004;
// The workbook of an object is closed: the object has no connection to its server any more.
constexpr auto kDisconnected = static_cast<int32_t>(0x800401A8);

inline AutomationError ExcelError(const String& description) {
  return AutomationError(kExcelError, description);
}

}  // namespace kestrelon::desktop::excel
