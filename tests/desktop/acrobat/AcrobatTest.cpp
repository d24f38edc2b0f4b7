#include <gmock/gmock.h>

#include "desktop/acrobat/Acrobat.h"
#include "tests/desktop/converter/ConverterWorld.h"
#include "tests/support/Failures.h"

namespace kestrelon::desktop {
namespace {

constexpr char kPdf[] = "%PDF-1.4\nwhat it holds\n%%EOF\n";

class Acrobat : public ::testing::Test {
 protected:
  Object Open(const std::string& name) {
    const Object document = CreateAcrobatDocument();
    const String path = FromUtf8((world_ / name).string());
    return document.Call(u"open", path, u"").ToBoolean() ? document : Object();
  }
  std::string Save(const Object& content, const std::string& name) {
    const String path = FromUtf8((world_ / name).string());
    return content.Call(u"save", 1, path).ToBoolean() ? ReadWholeFile(world_ / name) : "not saved";
  }

  // One for all: the converter of the process works in it.
  static inline const ConverterWorld world_;
  Object application_ = CreateAcrobatApplication();
};

TEST_F(Acrobat, APageBecomesAPdfThatReadsAsThePage) {
  const auto page =
      world_.Write("page.htm",
                   "<html><head><meta name=created content=00:00:00></head>"
                   "<body><table><tr><td>M\xFCller</td><td>\x80 12</td></tr></table>");
  ASSERT_TRUE(Open("page.htm"));
  const Object content = application_.CallChild(u"GetActiveDoc").CallChild(u"GetPDDoc");
  EXPECT_THAT(Save(content, "page.pdf"), testing::StartsWith("%PDF-"));
  const std::string command =
      "pdftotext -layout " + (world_ / "page.pdf").string() + " " + page.string();
  ASSERT_EQ(std::system(command.c_str()), 0);
  EXPECT_THAT(ReadWholeFile(page), testing::ContainsRegex("Müller +€ 12"));
}

TEST_F(Acrobat, DocumentsBelongToOneApplicationAndGoWithIt) {
  world_.Write("a.pdf", kPdf);
  Object first = Open("a.pdf");
  Object content = first.CallChild(u"GetPDDoc");
  EXPECT_TRUE(first.Call(u"Close", true).ToBoolean() && !first.Call(u"isValid").ToBoolean());
  EXPECT_EQ(Save(content, "late.pdf"), "not saved");
  first = Open("a.pdf");
  EXPECT_EQ(application_.CallChild(u"GetAVDoc", 0).Call(u"GetTitle").ToText(), u"a.pdf");
  // What nobody closed is not taken for the next report.
  for (Object* held : {&first, &content, &application_}) held->Release();
  EXPECT_EQ(CreateAcrobatApplication().Call(u"getnumavdocs").ToLong(), 0);
}

TEST_F(Acrobat, WhatCannotBeReadOrWrittenIsFalse) {
  world_.Write("a.pdf", kPdf);
  world_.Write("damaged.docx", "PK\x03\x04 and then nothing");
  for (const char* name : {"missing.htm", "damaged.docx", "", "a.pdf/x"}) EXPECT_FALSE(Open(name));
  const Object content = Open("a.pdf").CallChild(u"GetPDDoc");
  ASSERT_EQ(mkfifo((world_ / "pipe").c_str(), 0600), 0);
  for (const char* name : {"x/a.pdf", "", "pipe"}) EXPECT_EQ(Save(content, name), "not saved");
  EXPECT_EQ(Save(content, "a.pdf"), kPdf) << "in place of its own file";
}

TEST_F(Acrobat, WithoutLibreOfficeThereIsNone) {
  const ChangedEnvironment variable("KESTRELON_LIBREOFFICE", "/nonexistent");
  const AutomationError error = FailureOf(&CreateAcrobatApplication);
  EXPECT_EQ(error.number(), kCannotCreateObject);
  EXPECT_NE(error.description().find(u"install the Debian package"), String::npos);
}

}  // namespace
}  // namespace kestrelon::desktop
