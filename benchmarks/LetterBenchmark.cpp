// Letters against the floor, warm and cold. Prints the ratios that matter below the usual table.

#include <benchmark/benchmark.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "Control/KestrelonControl.h"
#include "benchmarks/BigLetter.h"
#include "benchmarks/Floor.h"
#include "desktop/storage/AtomicFile.h"
#include "platform/linux/LinuxPlatform.h"
#include "platform/linux/PageDocuments.h"

namespace kestrelon::benchmarks {
namespace {

namespace fs = std::filesystem;

constexpr int kBigPages = 60;

// The files of the run, in a folder of its own.
struct Files {
  desktop::PrivateFolder folder{"kestrelon-benchmark-"};
  const std::string small_template = desktop::ReadWholeFile(KESTRELON_EXAMPLES "/Letter.dotx");
  const std::string small_record = desktop::ReadWholeFile(KESTRELON_EXAMPLES "/Letter.xml");
  const LongDocument big = MakeLongDocument(small_template, kBigPages);
  const LongDocument bigger = MakeLongDocument(small_template, 2 * kBigPages);

  std::string Path(const std::string& name) const { return (folder.path() / name).string(); }
  Files() {
    desktop::WriteFileAtomically(Path("small.dotx"), small_template);
    desktop::WriteFileAtomically(Path("small.xml"), small_record);
    desktop::WriteFileAtomically(Path("big.docx"), big.package);
    desktop::WriteFileAtomically(Path("big.xml"), big.record_xml);
    desktop::WriteFileAtomically(Path("bigger.docx"), bigger.package);
  }
};

const Files& TheFiles() {
  static const Files files;
  return files;
}

void Floor(benchmark::State& state, const std::string& package) {
  for (auto _ : state) benchmark::DoNotOptimize(RunFloor(package));
}

// One letter from the member call to the saved file; a new file each time.
void Letter(benchmark::State& state, const std::string& template_path, const std::string& record,
            const std::string& extension) {
  LinuxPlatform platform([](const String& text, int32_t, const std::optional<String>&) {
    std::fprintf(stderr, "%s\n", ToUtf8(text).c_str());
    std::exit(1);
    return 1;
  });
  KestrelonControl control(platform);
  const Member& member = *FindMember(u"CreateLetterXML");
  const Value xml = XmlPageDocumentFromBytes(record);
  int number = 0;
  const auto make_letter = [&](const std::string& path) {
    std::vector<Value> values(member.parameters.size(), Value(Value::Omitted{}));
    values[0] = xml;
    values[1] = FromUtf8(template_path);
    values[4] = FromUtf8(path);
    values[5] = u"true";
    control.Invoke(member, values);
  };
  make_letter(TheFiles().Path("first" + extension));  // starts what stays warm
  for (auto _ : state) {
    const std::string path = TheFiles().Path("made" + std::to_string(number++) + extension);
    make_letter(path);
    state.PauseTiming();
    if (!fs::remove(path)) state.SkipWithError("no letter was made");
    state.ResumeTiming();
  }
}

// A whole process. Returns its peak memory in KiB.
long Spawn(const std::vector<std::string>& command) {
  std::vector<char*> argv;
  for (const std::string& word : command) argv.push_back(const_cast<char*>(word.c_str()));
  argv.push_back(nullptr);
  pid_t child = 0;
  int status = 0;
  rusage usage{};
  if (posix_spawn(&child, argv[0], nullptr, nullptr, argv.data(), environ) != 0 ||
      wait4(child, &status, 0, &usage) < 0 || status != 0) {
    std::fprintf(stderr, "%s failed\n", argv[0]);
    std::exit(1);
  }
  return usage.ru_maxrss;
}

std::vector<std::string> CallLetter(const std::string& template_name, const std::string& xml) {
  const Files& files = TheFiles();
  return {KESTRELON_PROGRAM,
          "call",
          "CreateLetterXML",
          "xmlDoc=@" + files.Path(xml),
          "template=" + files.Path(template_name),
          "strSavePath=" + files.Path("cold.docx"),
          "ReplaceinHeader=true"};
}

void Process(benchmark::State& state, const std::vector<std::string>& command) {
  for (auto _ : state) Spawn(command);
}

// Keeps the real time of every benchmark for the ratios.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.run_type == Run::RT_Aggregate && run.aggregate_name != "median") continue;
      times_[run.run_name.function_name] = run.GetAdjustedRealTime();
    }
    ConsoleReporter::ReportRuns(runs);
  }
  double Time(const std::string& name) const { return times_.at(name); }
  void PrintRatio(const char* what, const char* over, const char* under, double wanted) const {
    if (times_.count(over) == 0 || times_.count(under) == 0) return;
    std::printf("%-58s %6.2f (wanted: at most %.2f)\n", what, Time(over) / Time(under), wanted);
  }

  void PrintPdfRatio(double lok_nanoseconds) const {
    if (times_.count("LetterPdf") == 0 || lok_nanoseconds == 0) return;
    std::printf("%-58s %6.2f (wanted: at most 1.15)\n", "warm PDF / LibreOfficeKit's load and save",
                Time("LetterPdf") * 1e6 / lok_nanoseconds);
  }

 private:
  std::map<std::string, double> times_;
};

// Mean nanoseconds of LibreOfficeKit's own load and save of the small letter.
double LokFloorNanoseconds() {
  const Files& files = TheFiles();
  Spawn(CallLetter("small.dotx", "small.xml"));
  const std::string command = std::string(KESTRELON_LOK_FLOOR) + " " + KESTRELON_OFFICE + " " +
                              files.Path("cold.docx") + " " + files.Path("floor.pdf") + " 20";
  FILE* pipe = popen(command.c_str(), "r");
  double nanoseconds = 0;
  const bool read = std::fscanf(pipe, "%lf", &nanoseconds) == 1;
  return pclose(pipe) == 0 && read ? nanoseconds : 0;
}

void Register() {
  const Files& files = TheFiles();
  const auto add = [](const char* name, auto&& function, auto... arguments) {
    benchmark::RegisterBenchmark(name, function, arguments...)
        ->Unit(benchmark::kMillisecond)
        ->Repetitions(5)
        ->UseRealTime()
        ->ReportAggregatesOnly();
  };
  add("FloorSmall", Floor, files.small_template);
  add("LetterSmall", Letter, files.Path("small.dotx"), files.small_record, ".docx");
  add("FloorBig", Floor, files.big.package);
  add("LetterBig", Letter, files.Path("big.docx"), files.big.record_xml, ".docx");
  add("LetterBigger", Letter, files.Path("bigger.docx"), files.big.record_xml, ".docx");
  add("ColdFloor", Process,
      std::vector<std::string>{KESTRELON_COLD_FLOOR, files.Path("small.dotx")});
  add("ColdLetter", Process, CallLetter("small.dotx", "small.xml"));
  add("LetterPdf", Letter, files.Path("small.dotx"), files.small_record, ".pdf");
}

void PrintRatios(const RatioReporter& reporter, double lok_floor) {
  std::printf("\n");
  reporter.PrintRatio("small letter / floor", "LetterSmall", "FloorSmall", 1.5);
  reporter.PrintRatio("big letter (60 pages, 1,500 occurrences) / floor", "LetterBig", "FloorBig",
                      2.5);
  reporter.PrintRatio("twice the pages and occurrences / big letter", "LetterBigger", "LetterBig",
                      2.2);
  reporter.PrintRatio("cold call, whole process / cold floor program", "ColdLetter", "ColdFloor",
                      5);
  reporter.PrintPdfRatio(lok_floor);
  std::printf("%-58s %6.1f MB (wanted: at most 40)\n", "peak memory of the big letter's process",
              static_cast<double>(Spawn(CallLetter("big.docx", "big.xml"))) / 1024);
}

}  // namespace
}  // namespace kestrelon::benchmarks

int main(int argc, char** argv) {
  using namespace kestrelon::benchmarks;
  benchmark::Initialize(&argc, argv);
  Register();
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  PrintRatios(reporter, LokFloorNanoseconds());
  return 0;
}
