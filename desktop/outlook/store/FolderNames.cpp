#include "desktop/outlook/store/FolderNames.h"

#include "automation/AutomationError.h"
#include "desktop/outlook/store/EntryIds.h"

namespace kestrelon::desktop {

std::string FileNameFromName(StringView name) {
  std::string file_name;
  for (const char c : ToUtf8(name)) {
    const auto byte = static_cast<unsigned char>(c);
    const bool is_odd =
        byte < 0x20 || byte == 0x7F || c == '/' || c == '%' || (c == '.' && file_name.empty());
    file_name += is_odd ? '%' + ToHex(std::string_view(&c, 1)) : std::string(1, c);
  }
  constexpr size_t kLongest = 255;
  if (file_name.empty()) throw AutomationError(kInvalidProcedureCall, u"A folder needs a name");
  if (file_name.size() > kLongest) {
    throw AutomationError(kInvalidProcedureCall, u"The folder name \"" + Left(name, 40) +
                                                     u"…\" is too long. Choose a shorter one.");
  }
  return file_name;
}

String NameFromFileName(std::string_view file_name) {
  std::string name;
  for (size_t i = 0; i < file_name.size(); ++i) {
    const auto byte = file_name[i] == '%' ? FromHex(file_name.substr(i + 1, 2)) : std::nullopt;
    if (byte && byte->size() == 1) {
      name += *byte;
      i += 2;
    } else {
      name += file_name[i];
    }
  }
  return FromUtf8(name);
}

}  // namespace kestrelon::desktop
