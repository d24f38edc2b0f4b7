#include "desktop/word/package/PackageError.h"

#include "automation/AutomationError.h"
#include "automation/Text.h"
#include "desktop/word/package/Package.h"

namespace kestrelon::desktop::word {

void RefusePackage(const std::string& reason, std::string_view remedy) {
  throw AutomationError(kCorruptDocument, FromUtf8("The document cannot be opened: " + reason +
                                                   ". " + std::string(remedy)));
}

void RefuseXml(std::string_view part, const std::string& what) {
  RefusePackage("the XML of " + Quoted(part) + " " + what);
}

std::string Quoted(std::string_view name) {
  constexpr size_t kLongest = 100;
  std::string shown(name.substr(0, kLongest));
  for (char& c : shown) {
    if (static_cast<unsigned char>(c) < ' ' || c == '\x7F') c = '?';
  }
  return "\"" + shown + (name.size() > kLongest ? "…\"" : "\"");
}

}  // namespace kestrelon::desktop::word
