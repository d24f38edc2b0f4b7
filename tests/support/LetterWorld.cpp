#include "tests/support/LetterWorld.h"

namespace kestrelon::testing {

LetterWorld::LetterWorld()
    : letter_template(FromUtf8(KESTRELON_EXAMPLES "/Letter.dotx")),
      seminar_template(FromUtf8(KESTRELON_EXAMPLES "/Seminar.dotx")),
      platform([this](const String& text, int32_t flags, const std::optional<String>& title) {
        messages.push_back({text, flags, title});
        return 1;
      }) {
  std::filesystem::create_directory(output);
}

int LetterWorld::FilesInOutput() const {
  const std::filesystem::directory_iterator files(output);
  return static_cast<int>(std::distance(begin(files), end(files)));
}

bool IsWholePackage(std::string_view bytes) {
  return bytes.starts_with("PK") && bytes.find("PK\x05\x06") != std::string_view::npos;
}

}  // namespace kestrelon::testing
