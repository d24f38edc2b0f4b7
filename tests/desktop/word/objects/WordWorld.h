// The world of the tests of Word's objects: a folder of files and a running Word.
#pragma once

#include <filesystem>
#include <string>

#include "automation/DispatchObject.h"
#include "desktop/storage/AtomicFile.h"
#include "desktop/storage/Paths.h"
#include "desktop/word/WordApplication.h"
#include "tests/desktop/word/document/Builders.h"
#include "tests/support/Failures.h"

namespace kestrelon::desktop::word {

// The package of a document with this body and, when it is not "", this primary header.
inline std::string LetterOf(const std::string& body, const std::string& header = "") {
  if (header.empty()) return Packed(Main(body));
  const std::string reference = "<w:headerReference w:type=\"default\" r:id=\"rId1\"/>";
  const std::string part =
      "<w:hdr xmlns:w=\"" + std::string(kWordUri) +
      "\" xmlns:mc=\"http://schemas.openxmlformats.org/markup-compatibility/2006\""
      " xmlns:wps=\"urn:wps\">" +
      header + "</w:hdr>";
  return Packed(Main(body + Element("sectPr", reference)),
                {{"/letter/header.xml", "/header", part,
                  "application/vnd.openxmlformats-officedocument.wordprocessingml.header+xml"}});
}

class WordWorld {
 public:
  String Path(const std::string& name) const { return TextFromPath(folder_.path() / name); }
  String Write(const std::string& name, const std::string& content) const {
    WriteFileAtomically(folder_.path() / name, content);
    return Path(name);
  }
  std::string Read(const std::string& name) const { return ReadWholeFile(folder_.path() / name); }
  bool Exists(const std::string& name) const {
    return std::filesystem::exists(folder_.path() / name);
  }
  // A new document in `word` on a template with this body and header.
  Object NewLetter(const std::string& body, const std::string& header = "") const {
    return word.GetChild(u"Documents")
        .CallChild(u"Add", Write("template.docx", LetterOf(body, header)));
  }
  // The main text of a saved file, as another Word reads it.
  String TextOfFile(const std::string& name) const {
    return CreateWordApplication()
        .GetChild(u"Documents")
        .CallChild(u"Open", Path(name))
        .GetChild(u"Content")
        .Get(u"Text")
        .ToText();
  }

  Object word = CreateWordApplication();

 private:
  PrivateFolder folder_{"kestrelon-word-test-"};
};

inline String TextOf(const Object& document) {
  return document.GetChild(u"Content").Get(u"Text").ToText();
}

}  // namespace kestrelon::desktop::word
