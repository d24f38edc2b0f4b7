// "Excel.Application": opens workbooks in the user's own program, and writes cells into new ones,
// which the converter saves as .xlsx or .xls.
#pragma once

#include "automation/DispatchObject.h"

namespace kestrelon::desktop {

Object CreateExcelApplication();

}  // namespace kestrelon::desktop
