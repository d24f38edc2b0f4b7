// What becomes of a conversion when the worker program misbehaves: workers are shell scripts here.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

#include "automation/Text.h"
#include "desktop/converter/Converter.h"
#include "tests/desktop/converter/ConverterWorld.h"

namespace kestrelon::desktop {
namespace {

using std::chrono::milliseconds;
using testing::HasSubstr;

constexpr char kReady[] = "printf + >&3\n";
// Reads one request; its fields are then in $1 (source), $2 (target), …
constexpr char kTakeRequest[] =
    "request=$(dd bs=65536 count=1 <&3 2>/dev/null | tr '\\0' '\\n')\n"
    "test -n \"$request\" || exit 0\n"
    "IFS='\n'; set -- $request\n";
constexpr char kWritePdf[] = "printf '%%PDF-1.6 %s %%%%EOF' \"$(cat \"$1\")\" >\"$2\"\n";

class WorkerFailureTest : public testing::Test {
 protected:
  // A folder that passes for an installed office suite, so that these tests need none.
  WorkerFailureTest() {
    std::filesystem::create_directories(world_ / "office/program");
    std::filesystem::create_directories(world_ / "office/share/registry");
    world_.Write("office/program/libmergedlo.so", "");
    world_.Write("office/share/registry/writer.xcd", "");
    source_ = world_.Write("letter.rtf", "Dear");
    target_ = world_.Write("letter.pdf", "what was there before");
  }

  // Converts with this worker; returns the description of the failure, empty on success.
  std::string Convert(const std::string& script, ConverterLimits limits = {}) {
    const ChangedEnvironment worker("KESTRELON_CONVERTER_WORKER",
                                    world_.WriteProgram("worker", script).string());
    Converter converter(limits);
    return ConvertWith(converter);
  }
  std::string ConvertWith(Converter& converter) {
    const auto error =
        IgnoreFailures([&] { converter.Convert(source_, target_, ConversionFormat::kPdf); });
    if (!error) return "";
    EXPECT_EQ(error->number(), kConversionFailed);
    return ToUtf8(error->description());
  }
  void ExpectNothingLeftBehind(const std::string& target_content) {
    EXPECT_EQ(ReadWholeFile(target_), target_content);
    EXPECT_EQ(world_.PrivateFolders(), 0u);
    EXPECT_THAT(Descendants(getpid()), testing::IsEmpty());
  }

  ConverterWorld world_;
  ChangedEnvironment office_{"KESTRELON_LIBREOFFICE", (world_ / "office/program").string()};
  std::filesystem::path source_, target_;
};

TEST_F(WorkerFailureTest, ChatterOnTheStandardStreamsDisturbsNothing) {
  EXPECT_EQ(Convert("echo hello; echo warning >&2\n" + std::string(kReady) + kTakeRequest +
                        "echo working; " + kWritePdf + kReady + kTakeRequest,
                    {milliseconds(0), milliseconds(-1)}),  // as good as no limits
            "");
  ExpectNothingLeftBehind("%PDF-1.6 Dear %%EOF");
}

TEST_F(WorkerFailureTest, BytesAreConvertedUnderTheirOwnNameInTheFolderOfTheWorkerAlone) {
  const ChangedEnvironment worker(
      "KESTRELON_CONVERTER_WORKER",
      world_
          .WriteProgram("worker", kReady + ("while true; do " + std::string(kTakeRequest)) +
                                      "printf '%%PDF-1.6 %s in %s of %s %%%%EOF' \"$(cat \"$1\")\" "
                                      "\"${1##*/}\" \"$(ls \"$TMPDIR/../..\" | wc -l)\" >\"$2\"\n" +
                                      kReady + "done\n")
          .string());
  {
    Converter converter;
    converter.Convert("Dear \u00e4", "Letter %20.docx", target_, ConversionFormat::kPdf);
    EXPECT_EQ(ReadWholeFile(target_), "%PDF-1.6 Dear \u00e4 in Letter %20.docx of 1 %%EOF");
    converter.Convert("x", std::string(251, 'n') + ".docx", target_, ConversionFormat::kPdf);
    EXPECT_EQ(ReadWholeFile(target_), "%PDF-1.6 x in document.docx of 1 %%EOF");
    EXPECT_EQ(converter.ConvertToBytes(source_, ConversionFormat::kPdf),
              "%PDF-1.6 Dear in letter.rtf of 1 %%EOF");
  }
  ExpectNothingLeftBehind("%PDF-1.6 x in document.docx of 1 %%EOF");
}

TEST_F(WorkerFailureTest, FailuresAreToldWithReasonAndLeaveTheTargetAlone) {
  const ConverterLimits kShort{milliseconds(300), milliseconds(300)};
  const struct {
    const char* what;
    std::string script;
    ConverterLimits limits;
    const char* expected;
  } kCases[] = {
      {"never ready", "read line <&3\n", kShort, "not ready within 0.3 s"},
      {"never done", std::string(kReady) + kTakeRequest + "read line <&3\n", kShort,
       "not finish within 0.3 s"},
      {"cannot start", "printf -- '-no such library' >&3\n", {}, "no such library"},
      {"crash on start", "exit 1\n", {}, "crashes on its start"},
      {"crash on document", std::string(kReady) + kTakeRequest + "exit 1\n", {}, "crashed on it"},
      {"refusal",
       std::string(kReady) + kTakeRequest + "printf -- '-it is damaged' >&3\n",
       {},
       "letter.rtf to PDF: it is damaged"},
      {"success without a file", std::string(kReady) + kTakeRequest + kReady, {}, "incomplete"},
      {"wrong file",
       std::string(kReady) + kTakeRequest + "echo text >\"$2\"\n" + kReady,
       {},
       "incomplete"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_THAT(Convert(c.script, c.limits), HasSubstr(c.expected));
    ExpectNothingLeftBehind("what was there before");
  }
}

TEST_F(WorkerFailureTest, ACrashedWorkerIsRestartedOncePerConversion) {
  // Each start leaves a mark; only the second one converts.
  const std::string marks = (world_ / "marks").string();
  const std::string count = "echo x >>" + marks + "\n" + kReady + kTakeRequest;
  EXPECT_EQ(
      Convert(count + "test $(wc -l <" + marks + ") = 2 || kill -9 $$\n" + kWritePdf + kReady), "");
  ExpectNothingLeftBehind("%PDF-1.6 Dear %%EOF");
  std::filesystem::remove(marks);
  EXPECT_THAT(Convert(count + "kill -9 $$\n"), HasSubstr("twice"));
  EXPECT_EQ(ReadWholeFile(marks), "x\nx\n");
}

TEST_F(WorkerFailureTest, AWorkerThatIgnoresEverythingIsKilledWithItsGroup) {
  EXPECT_THAT(Convert("trap '' TERM HUP\n" + std::string(kReady) + "sleep 1000 & sleep 1000\n",
                      {milliseconds(5000), milliseconds(100)}),
              HasSubstr("within 0.1 s"));
  const std::vector<pid_t> left = Descendants(getpid());
  EXPECT_THAT(left, testing::IsEmpty());
  EXPECT_EQ(world_.PrivateFolders(), 0u);
}

TEST_F(WorkerFailureTest, AMissingInstallationIsToldWithWhatToInstall) {
  std::filesystem::remove(world_ / "office/share/registry/writer.xcd");
  EXPECT_THAT(Convert(kReady), HasSubstr("libreoffice-writer-nogui"));
  std::filesystem::remove(world_ / "office/program/libmergedlo.so");
  EXPECT_THAT(Convert(kReady), testing::AllOf(HasSubstr("KESTRELON_LIBREOFFICE"),
                                              HasSubstr("libreoffice-writer-nogui")));
  Converter converter;
  EXPECT_THROW(converter.Convert(source_, target_, ConversionFormat::kXls), AutomationError);
  ExpectNothingLeftBehind("what was there before");
}

}  // namespace
}  // namespace kestrelon::desktop
