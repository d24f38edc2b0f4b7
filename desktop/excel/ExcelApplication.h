// "Excel.Application": new workbooks with cells, saved as .xlsx and .xls; workbooks of files, which
// are opened in the user's own program and converted, but not read.
#pragma once

#include "automation/DispatchObject.h"

namespace kestrelon::desktop {

// A new Excel of its own, without workbooks, invisible. It lives as long as anything of it is held;
// after Quit all of it answers with error 462.
Object CreateExcelApplication();

}  // namespace kestrelon::desktop
