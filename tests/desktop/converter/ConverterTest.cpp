// Conversions by the installed LibreOffice. All share one warm worker: each start costs a second.
#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/landlock.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <chrono>
#include <thread>

#include "automation/Text.h"
#include "desktop/converter/Converter.h"
#include "desktop/word/package/Package.h"
#include "tests/desktop/converter/ConverterWorld.h"
#include "tests/desktop/word/document/Builders.h"
#include "tests/support/Failures.h"

namespace kestrelon::desktop {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr char kLetter[] =
    "<html><head><meta charset=utf-8></head><body><p>Dear Zo\u00eb,</p>"
    "<p>\u00a312, \u20ac5 &amp; \u03a9</p></body></html>";
// One black pixel.
constexpr char kPicture[] =
    "\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\0\x01\0\0\0\x01\x08\0\0\0\0:~\x9bU\0\0\0\nIDATx\x9c"
    "c`\0\0\0\x02\0\x01H\xaf\xa4q\0\0\0\0IEND\xae"
    "B`\x82";
const std::string kPng(kPicture, sizeof kPicture - 1);

// A .docx with one picture, `blip` being how it is referred to as "p".
void WriteDocx(const std::filesystem::path& path, const std::string& blip, const std::string& url) {
  const std::string office = "http://schemas.openxmlformats.org/";
  const std::string relationships = office + "officeDocument/2006/relationships";
  const std::string main =
      "<w:document xmlns:w=\"" + office + "wordprocessingml/2006/main\" xmlns:r=\"" +
      relationships + "\" xmlns:d=\"" + office +
      "drawingml/2006/wordprocessingDrawing\" xmlns:a=\"" + office +
      "drawingml/2006/main\" xmlns:p=\"" + office +
      "drawingml/2006/picture\"><w:body><w:p><w:r><w:t>Hello</w:t></w:r><w:r><w:drawing><d:inline>"
      "<d:extent cx=\"900000\" cy=\"900000\"/><d:docPr id=\"1\" name=\"P\"/><a:graphic>"
      "<a:graphicData uri=\"" +
      office +
      "drawingml/2006/picture\"><p:pic><p:nvPicPr>"
      "<p:cNvPr id=\"1\" name=\"P\"/><p:cNvPicPr/></p:nvPicPr><p:blipFill><a:blip r:" +
      blip +
      "=\"rId1\"/><a:stretch><a:fillRect/></a:stretch></p:blipFill><p:spPr><a:xfrm>"
      "<a:off x=\"0\" y=\"0\"/><a:ext cx=\"900000\" cy=\"900000\"/></a:xfrm>"
      "<a:prstGeom prst=\"rect\"/></p:spPr></p:pic></a:graphicData></a:graphic></d:inline>"
      "</w:drawing></w:r></w:p></w:body></w:document>";
  const auto package = word::Package::Open(word::Packed(main));
  package->Add("/letter/p.png", "image/png", kPng);
  package->AddRelationship("/letter/main.xml", relationships + "/image", url, blip == "link");
  WriteFileAtomically(path, package->Write());
}

// Counts the connections that somebody makes to it.
class LoopbackListener {
 public:
  LoopbackListener() : socket_(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
    address_.sin_family = AF_INET;
    address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address_;
    bind(socket_, reinterpret_cast<sockaddr*>(&address_), size);
    listen(socket_, 16);
    getsockname(socket_, reinterpret_cast<sockaddr*>(&address_), &size);
  }
  ~LoopbackListener() { close(socket_); }
  std::string Url(const std::string& name) const {
    return "http://127.0.0.1:" + std::to_string(ntohs(address_.sin_port)) + "/" + name;
  }
  int Connections() const {
    int count = 0;
    for (int peer; (peer = accept(socket_, nullptr, nullptr)) >= 0; ++count) close(peer);
    return count;
  }

 private:
  int socket_;
  sockaddr_in address_{};
};

bool KernelRestrictsFiles() {
  return syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION) > 0;
}

class ConverterTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    world_ = new ConverterWorld;
    converter_ = new Converter;
  }
  static void TearDownTestSuite() {
    delete converter_;
    EXPECT_EQ(world_->PrivateFolders(), 0u);
    EXPECT_THAT(Descendants(getpid()), testing::IsEmpty());
    delete world_;
  }

  // The content of what `source` becomes.
  static std::string Convert(const std::filesystem::path& source, const std::string& extension,
                             ConversionFormat format) {
    const auto target = *world_ / ("converted." + extension);
    std::filesystem::remove(target);
    converter_->Convert(source, target, format);
    return ReadWholeFile(target);
  }
  static std::string ToText(const std::filesystem::path& pdf) {
    const auto text = *world_ / "text";
    const std::string command = "pdftotext '" + pdf.string() + "' '" + text.string() + "'";
    EXPECT_EQ(std::system(command.c_str()), 0);
    return ReadWholeFile(text);
  }

  static ConverterWorld* world_;
  static Converter* converter_;
};

ConverterWorld* ConverterTest::world_;
Converter* ConverterTest::converter_;

TEST_F(ConverterTest, TextGoesThroughEveryFormat) {
  auto source = world_->Write("a letter \u00e4%20.html", kLetter);
  for (const auto& [name, format] : {std::pair("letter.docx", ConversionFormat::kDocx),
                                     {"letter.doc", ConversionFormat::kDoc},
                                     {"letter.pdf", ConversionFormat::kPdf}}) {
    converter_->Convert(source, *world_ / name, format);
    source = *world_ / name;
  }
  EXPECT_THAT(ToText(source), HasSubstr("Dear Zo\u00eb,\n\u00a312, \u20ac5 & \u03a9"));
  EXPECT_EQ(world_->PrivateFolders(), 1u) << "one warm worker serves them all";
}

TEST_F(ConverterTest, WhatCannotBeConvertedIsToldWithTheReason) {
  const auto damaged = world_->Write("damaged.docx", "PK\x03\x04 and then nothing");
  const auto error = FailureOf([&] { Convert(damaged, "pdf", ConversionFormat::kPdf); });
  EXPECT_EQ(error.number(), kConversionFailed);
  EXPECT_THAT(ToUtf8(error.description()), HasSubstr("damaged.docx to PDF"));
  EXPECT_THAT(ToUtf8(error.description()), Not(HasSubstr(".)")));
  EXPECT_THROW(Convert(*world_ / "missing.docx", "pdf", ConversionFormat::kPdf), AutomationError);
  EXPECT_FALSE(std::filesystem::exists(*world_ / "converted.pdf"));
}

TEST_F(ConverterTest, PicturesOfTheDocumentAreKeptInOneHtmlFile) {
  WriteDocx(*world_ / "own.docx", "embed", "/letter/p.png");
  EXPECT_THAT(Convert(*world_ / "own.docx", "html", ConversionFormat::kHtml),
              HasSubstr("src=\"data:image/png;base64,"));
}

TEST_F(ConverterTest, LinksReachNeitherFilesNorNetwork) {
  const LoopbackListener listener;
  const std::string file = "file://" + world_->Write("secret.png", kPng).string();
  for (const std::string& url : {file, listener.Url("secret.png")}) {
    WriteDocx(*world_ / "linked.docx", "link", url);
    world_->Write("linked.html", "<html><link rel=stylesheet href=\"" + url +
                                     "\"><p>Hello<img src=\"" + url + "\"></p></html>");
    world_->Write("linked.rtf", "{\\rtf1 Hello {\\field{\\*\\fldinst INCLUDEPICTURE \"" + url +
                                    "\" \\\\d}{\\fldrslt x}}}");
    for (const char* name : {"linked.docx", "linked.html", "linked.rtf"}) {
      if (name == std::string("linked.rtf") && !KernelRestrictsFiles()) continue;
      SCOPED_TRACE(std::string(name) + " with " + url);
      const std::string html = Convert(*world_ / name, "htm", ConversionFormat::kHtml);
      EXPECT_THAT(html, HasSubstr("Hello"));
      EXPECT_THAT(html, Not(HasSubstr("data:image/png")));
      EXPECT_THAT(Convert(*world_ / name, "docx", ConversionFormat::kDocx),
                  Not(HasSubstr("word/media/")));
    }
  }
  EXPECT_EQ(listener.Connections(), 0);
}

TEST_F(ConverterTest, AKilledWorkerIsReplaced) {
  const auto source = world_->Write("letter.html", kLetter);
  Convert(source, "pdf", ConversionFormat::kPdf);
  const std::vector<pid_t> before = Descendants(getpid());
  ASSERT_EQ(before.size(), 2u) << "a supervisor and the office process";
  kill(before[1], SIGKILL);
  Convert(source, "pdf", ConversionFormat::kPdf);
  EXPECT_THAT(ToText(*world_ / "converted.pdf"), HasSubstr("Dear Zo\u00eb"));
  EXPECT_EQ(world_->PrivateFolders(), 1u);
  EXPECT_EQ(Descendants(getpid()).size(), 2u);
}

TEST_F(ConverterTest, AKilledProgramLeavesNothingBehind) {
  const auto source = world_->Write("letter.html", kLetter);
  const ConverterWorld other;
  const auto target = other / "killed.pdf";
  const pid_t program = fork();
  if (program == 0) {
    Converter converter;
    converter.Convert(source, target, ConversionFormat::kPdf);
    kill(getpid(), SIGKILL);
  }
  int status = 0;
  waitpid(program, &status, 0);
  ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
  EXPECT_TRUE(std::filesystem::exists(target));
  for (int i = 0; i < 1000 && other.PrivateFolders() != 0; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  EXPECT_EQ(other.PrivateFolders(), 0u);
}

}  // namespace
}  // namespace kestrelon::desktop
