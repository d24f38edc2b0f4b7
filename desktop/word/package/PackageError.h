// How the package refuses a file: one number, one shape of text.
#pragma once

#include <string>
#include <string_view>

namespace kestrelon::desktop::word {

constexpr std::string_view kSaveAgain =
    "Open it in the program that made it, save it again as .docx and try once more.";

// Throws kCorruptDocument, "The document cannot be opened: REASON. REMEDY".
[[noreturn]] void RefusePackage(const std::string& reason, std::string_view remedy = kSaveAgain);

// Likewise, for the XML of one part, "WHAT" being what is wrong with it.
[[noreturn]] void RefuseXml(std::string_view part, const std::string& what);

// A name from the file as it may be shown: in quotes, shortened, without control characters.
std::string Quoted(std::string_view name);

}  // namespace kestrelon::desktop::word
