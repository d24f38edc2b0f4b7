// A Linux desktop with the example templates and an output folder of its own.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/storage/AtomicFile.h"
#include "platform/linux/LinuxPlatform.h"
#include "tests/support/Documents.h"
#include "tests/support/ScriptedDesktop.h"

namespace kestrelon::testing {

class LetterWorld {
 public:
  LetterWorld();

  int FilesInOutput() const;

  const std::string letter_xml = kSmallLetterXml;
  const std::string seminar_xml =
      "<record><field name='n' templatetag='title'/>"
      "<Data><r fieldname='n' value='Day'/></Data>"
      "<listitemname listkey='attendees'>"
      "<r><f templatetag='name' label='Name' value='Ann'/></r>"
      "<r><f templatetag='name' label='Name' value='Bob'/></r></listitemname></record>";
  const String letter_template;
  const String seminar_template;

 private:
  desktop::PrivateFolder folder_{"kestrelon-test-"};

 public:
  const std::filesystem::path output = folder_.path() / "out";
  const std::filesystem::path saved_path = output / "Letter.docx";
  std::vector<ShownMessage> messages;
  LinuxPlatform platform;
};

// A zip with its directory at the end.
bool IsWholePackage(std::string_view bytes);

}  // namespace kestrelon::testing
