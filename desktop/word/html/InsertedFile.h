// Files that can be inserted into a document, as the markup that goes into it.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "desktop/word/document/InsertionPlace.h"

namespace kestrelon::desktop::word::html {

// An HTML file as blocks: paragraphs, headings, lists and tables with their look. Nothing is
// fetched; a picture leaves its alternative text. Error 5 when elements nest deeper than 256, 4198
// for a table of more than 63 columns.
BlockSource BlocksOfHtml(std::string_view bytes);
// A paragraph for each line, in UTF-8, UTF-16 with a byte order mark, or else Windows-1252.
BlockSource BlocksOfText(std::string_view bytes);

// What the file is shows in its extension, else in its content. Error 4198 for a format other than
// HTML and plain text, and the file system's.
BlockSource BlocksOfFile(const std::filesystem::path& path);

}  // namespace kestrelon::desktop::word::html
