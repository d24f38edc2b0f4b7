// Tables of a Word document whose first row says what their columns hold. Rows and columns count
// from 1. Failures are the caller's.
#pragma once

#include <vector>

#include "automation/DispatchObject.h"

namespace kestrelon {

Object CellRange(const Object& table, int32_t row, int32_t column);

// The cleaned texts of the first row; index k is column k, index 0 is not used.
std::vector<String> ReadHeaderCells(const Object& table);

// Adds rows until the table has one for each of `lines`, besides the first row. None is removed.
void AddRowsFor(const Object& table, int32_t lines);

}  // namespace kestrelon
