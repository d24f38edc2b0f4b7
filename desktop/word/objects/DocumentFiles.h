// Documents as files: which formats are read and written how.
//
// Packages (.docx, .docm, .dotx, .dotm) are read and written by the document engine; everything
// else goes through the converter, in a private folder. What a file is shows in its content first,
// in its extension only where the content does not tell.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>

#include "automation/AutomationError.h"
#include "automation/Text.h"
#include "desktop/storage/Paths.h"
#include "desktop/word/document/Document.h"

namespace kestrelon::desktop::word {

// The formats of SaveAs that are written here, under Word's numbers.
enum class FileFormat : int32_t {
  kDocument97 = 0,
  kHtml = 8,
  kFilteredHtml = 10,
  kDocx = 12,
  kDocm = 13,
  kDotx = 14,
  kDotm = 15,
  kDefault = 16,  // .docx
  kPdf = 17,
};

// Reads a document of any known format. The error of the file system, the converter or the engine,
// with the path in its description.
std::unique_ptr<Document> ReadDocument(const std::filesystem::path& path);

// Runs `read`, which reads the file; that it is missing becomes `number` with a text that says what
// to do.
template <typename Read>
auto NamingMissing(const std::filesystem::path& path, int32_t number, StringView what,
                   const Read& read) {
  try {
    return read();
  } catch (const AutomationError& error) {
    if (error.number() != kFileNotFound && error.number() != kPathNotFound) throw;
    throw AutomationError(number, String(what) + u" was not found: " + TextFromPath(path) +
                                      u". Check its name and folder.");
  }
}

struct SaveTarget {
  std::filesystem::path path;
  FileFormat format = FileFormat::kDefault;
};

// What `SaveAs path, format` means. Without a format the extension decides: an unknown one, and
// .pdf, get a .docx document under that very name; a path without one has that of the format
// appended. Error 4198 for the extension of a format that Word knows and that is not written here.
// Error 4120 for a path without a file name, for a folder and for a device.
SaveTarget ResolveSaveTarget(std::filesystem::path path, std::optional<FileFormat> format);
// Error 4120 for a number that is not written here.
FileFormat FormatOfNumber(int32_t number);

// A document of the engine's own formats is written with all that it holds, any other as it reads,
// without tracked deletions and comments. Replaces the file in one step; an existing file is never
// left half written.
void WriteDocument(Document& document, const SaveTarget& target);

}  // namespace kestrelon::desktop::word
