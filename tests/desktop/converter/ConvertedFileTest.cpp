#include <gtest/gtest.h>

#include "desktop/converter/ConvertedFile.h"
#include "desktop/converter/HtmlSource.h"
#include "desktop/converter/HtmlStyles.h"

namespace kestrelon::desktop {
namespace {

TEST(ConvertedFileTest, OnlyACompleteFileOfTheFormatHasItsSignature) {
  const std::string package =
      "PK\x03\x04....[Content_Types].xml..." + std::string("PK\x05\x06") + std::string(18, '\0');
  const std::string compound = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1" + std::string(504, '\0');
  const struct {
    const char* what;
    std::string content;
    ConversionFormat format;
    bool expected;
  } kCases[] = {
      {"pdf", "%PDF-1.6\n...\n%%EOF\n", ConversionFormat::kPdf, true},
      {"pdf cut off", "%PDF-1.6\n...", ConversionFormat::kPdf, false},
      {"docx", package, ConversionFormat::kDocx, true},
      {"docx cut off", package.substr(0, 30), ConversionFormat::kDocx, false},
      {"other zip", "PK\x03\x04mimetype PK\x05\x06", ConversionFormat::kDocx, false},
      {"doc", compound, ConversionFormat::kDoc, true},
      {"docx for a doc", package, ConversionFormat::kDoc, false},
      {"html", " \r\n<!DOCTYPE HTML>\n<HTML></html>\n", ConversionFormat::kHtml, true},
      {"html without type", "<html lang=en></html>", ConversionFormat::kHtml, true},
      {"html cut off", "<html><body>", ConversionFormat::kHtml, false},
      {"text for html", "Dear <html></html>", ConversionFormat::kHtml, false},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(HasSignature(c.content, c.format), c.expected) << c.what;
  }
}

TEST(ConvertedFileTest, HtmlBecomesAnsiWithReferencesForTheRest) {
  EXPECT_EQ(FinishHtml("<meta content=\"text/html; charset=utf-8\"/>charset=utf-8"),
            "<meta content=\"text/html; charset=windows-1252\"/>charset=utf-8");
  EXPECT_EQ(FinishHtml("£5 caf\u00e9? \u20ac \u03a9 \u6f22 \U0001F600"),
            "\xA3"
            "5 caf\xE9? \x80 &#937; &#28450; &#128512;");
  EXPECT_EQ(FinishHtml("<style>p { font: \u660e b }</style>\u660e"),
            "<style>p { font: \\660e  b }</style>&#26126;")
      << "a reference means nothing in a style sheet";
  EXPECT_EQ(FinishHtml("<p>a<img src=\"data:image/png;base64,iVBORw0KGgo=\" width=\"9\"/>b"
                       "<img src=\"data:image/png;base64,iVBORw0KGgoAAA\"/></p>"),
            "<p>ab<img src=\"data:image/png;base64,iVBORw0KGgoAAA\"/></p>");
  EXPECT_EQ(FinishHtml("<head>\n\t<meta name=\"changed\" content=\"00:00:00\"/>\n</head>"),
            "<head>\n</head>");
}

TEST(HtmlSourceTest, PagesAreReadInTheCharacterSetThatTheyAreWrittenIn) {
  const std::pair<std::string, std::string> kCases[] = {
      {"\uFEFFcaf\u00e9", "caf\u00e9"},
      {"<META Content=\"CharSet = UTF-8\">\xE9 \x80", "<META Content=\"CharSet = UTF-8\">é €"},
      {"<meta charset='latin2'/>\xE9", "<meta charset='latin2'/>\xE9"},
      {"<meta charset=iso-8859-15>\xA4", "<meta charset=iso-8859-15>\xA4"},
      {"a<meta charset=iso-8859-15>b \x80", "ab €"},
      {"<meta charset=unicode>\x80", "€"},
      {"\uFEFF<meta charset=latin2>\u00e9", "\u00e9"},
      {"<meta name=x content=charset=latin2>\x80", "<meta name=x content=charset=latin2>€"},
      {"a<meta http-equiv='Pragma' content=x>b<META HTTP-EQUIV = \"refresh\">c", "abc"},
      {"<meta http-equiv=Content-Type content=text/html>",
       "<meta http-equiv=Content-Type content=text/html>"},
      {"a<meta\nNAME = created content=x>b<meta name=\"changed\">c<meta", "abc<meta"}};
  for (const auto& [html, expected] : kCases) {
    EXPECT_TRUE(PrepareHtml(html).ends_with("</style>" + expected)) << PrepareHtml(html);
  }
}

TEST(HtmlStylesTest, RulesAreWrittenAsTheOfficeSuiteTakesThem) {
  const std::pair<std::string, std::string> kCases[] = {
      {"<!-- /* a{} */ .a, .b{c:d} -->", ".a{c:d}\n.b{c:d}\n"},
      {"TD.a,p.a,td p.a,td{x}", ".a{x}\np.a{x}\ntd p.a{x}\ntd{x}\n"},
      {"@media Print{th.a{x}}@media screen{b{y}}i{z}", ".a{x}\ni{z}\n"},
      {"@import url(a);@page{x}b{y}", "@import url(a);@page{x}b{y}\n"},
      {"@media all{b{x", "b{x\n"},
      {"}b{x}", "}\nb{x}\n"},
      {"/*", ""}};
  for (const auto& [styles, simple] : kCases) {
    EXPECT_EQ(SimplifyStyles("a<STYLE x>" + styles + "</style>b<style"),
              "a<STYLE x>" + simple + "</style>b<style");
  }
}

}  // namespace
}  // namespace kestrelon::desktop
