#include "desktop/excel/ExcelApplication.h"

namespace kestrelon::desktop {

Object CreateExcelApplication() { throw AutomationError(kCannotCreateObject); }

}  // namespace kestrelon::desktop
