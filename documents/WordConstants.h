// Constants of Word's object model, under their usual names.
#pragma once

#include <cstdint>

namespace kestrelon {

constexpr int32_t wdCharacter = 1;  // WdUnits
constexpr int32_t wdParagraph = 4;
constexpr int32_t wdExtend = 1;                // WdMovementType
constexpr int32_t wdFindContinue = 1;          // WdFindWrap
constexpr int32_t wdReplaceAll = 2;            // WdReplace
constexpr int32_t wdWithInTable = 12;          // WdInformation
constexpr int32_t wdEvenPagesHeaderStory = 6;  // WdStoryType: 6 to 11 are headers and footers
constexpr int32_t wdFirstPageFooterStory = 11;
constexpr int32_t wdFormatHTML = 8;        // WdSaveFormat
constexpr int32_t wdExportFormatPDF = 17;  // WdExportFormat
constexpr int32_t wdDoNotSaveChanges = 0;  // WdSaveOptions

constexpr int32_t kCannotEditRange = 5904;  // Word's "Cannot edit Range."

}  // namespace kestrelon
