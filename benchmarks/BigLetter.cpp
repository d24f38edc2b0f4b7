#include "benchmarks/BigLetter.h"

#include "desktop/word/package/Package.h"

namespace kestrelon::benchmarks {
namespace {

using desktop::word::Package;

constexpr int kTags = 30;
constexpr int kParagraphsPerPage = 25;

// One run as Word writes it.
std::string Run(const std::string& text) {
  return "<w:r w:rsidRPr=\"00A77B3E\"><w:rPr><w:rFonts w:ascii=\"Calibri\" w:hAnsi=\"Calibri\"/>"
         "<w:sz w:val=\"22\"/></w:rPr><w:t xml:space=\"preserve\">" +
         text + "</w:t></w:r>";
}

// A paragraph with one tag; every third tag is split the way a spelling mark splits it.
std::string Paragraph(int number) {
  const std::string tag = "field" + std::to_string(number % kTags);
  const std::string sentence = "In reply to your letter of paragraph " + std::to_string(number) +
                               " we confirm what was agreed at our last meeting about ";
  std::string runs;
  if (number % 3 == 0) {
    runs = Run(sentence + "&lt;") + "<w:proofErr w:type=\"spellStart\"/>" + Run(tag) +
           "<w:proofErr w:type=\"spellEnd\"/>" + Run("&gt; and its delivery.");
  } else {
    runs = Run(sentence + "&lt;" + tag + "&gt; and its delivery.");
  }
  return "<w:p w:rsidR=\"00A77B3E\" w:rsidRDefault=\"00A77B3E\"><w:pPr><w:spacing w:after=\"120\"/>"
         "</w:pPr>" +
         runs + "</w:p>";
}

std::string MakeBody(int pages) {
  std::string body;
  for (int i = 0; i < pages * kParagraphsPerPage; ++i) body += Paragraph(i);
  return body;
}

std::string MakeRecord() {
  std::string fields;
  std::string rows;
  for (int i = 0; i < kTags; ++i) {
    const std::string name = "field" + std::to_string(i);
    fields += "<field name=\"" + name + "\" templatetag=\"" + name + "\" label=\"\"/>";
    rows += "<row fieldname=\"" + name + "\" value=\"the value of " + name + "\"/>";
  }
  return "<Data>" + fields + "<Data>" + rows + "</Data></Data>";
}

}  // namespace

LongDocument MakeLongDocument(const std::string& template_package, int pages) {
  const auto package = Package::Open(template_package);
  const std::string main = package->RelatedPart("", "/officeDocument");
  std::string document(package->Content(main));
  // The body's own blocks give way; its section properties stay.
  const size_t body = document.find("<w:body>") + 8;
  const size_t section = document.rfind("<w:sectPr");
  document = document.substr(0, body) + MakeBody(pages) + document.substr(section);
  package->Replace(main, document);
  package->SetContentType(main,
                          "application/vnd.openxmlformats-officedocument.wordprocessingml."
                          "document.main+xml");
  return {package->Write(), MakeRecord()};
}

}  // namespace kestrelon::benchmarks
