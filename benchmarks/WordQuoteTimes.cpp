// Quotes with their lines in a table of the Word template, against the floor.
//
// Rounds of both sizes alternate, and medians are taken, so that a busy machine slows both.

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "Control/KestrelonControl.h"
#include "benchmarks/Floor.h"
#include "benchmarks/QuoteBenchmark.h"
#include "benchmarks/Timing.h"
#include "desktop/storage/AtomicFile.h"
#include "desktop/word/package/Package.h"
#include "platform/linux/LinuxPlatform.h"
#include "platform/linux/PageDocuments.h"

namespace kestrelon::benchmarks {
namespace {

namespace fs = std::filesystem;
using desktop::word::Package;

constexpr int kColumns = 8;
constexpr int kTags = 12;
constexpr int kLines = 2000;
constexpr int kRounds = 5;
constexpr int kRuns = 4;  // of a round

std::string Name(const char* kind, int number) { return kind + std::to_string(number); }

std::string Run(const std::string& text) {
  return "<w:r><w:rPr><w:rFonts w:ascii=\"Calibri\" w:hAnsi=\"Calibri\"/><w:sz w:val=\"20\"/>"
         "</w:rPr><w:t xml:space=\"preserve\">" +
         text + "</w:t></w:r>";
}

std::string Row(const std::function<std::string(int)>& text) {
  std::string row = "<w:tr><w:trPr><w:cantSplit/></w:trPr>";
  for (int i = 0; i < kColumns; ++i) {
    row +=
        "<w:tc><w:tcPr><w:tcW w:w=\"1128\" w:type=\"dxa\"/></w:tcPr><w:p><w:pPr>"
        "<w:spacing w:after=\"0\"/></w:pPr>" +
        Run(text(i)) + "</w:p></w:tc>";
  }
  return row + "</w:tr>";
}

// The example letter's package with a quote's body: tags, and a table with a header and one row.
std::string MakeTemplate() {
  const auto package = Package::Open(desktop::ReadWholeFile(KESTRELON_EXAMPLES "/Letter.dotx"));
  const std::string main = package->RelatedPart("", "/officeDocument");
  const std::string document(package->Content(main));
  std::string body;
  for (int i = 0; i < kTags; ++i) {
    body += "<w:p>" + Run("About &lt;" + Name("tag", i) + "&gt; of this offer") + "</w:p>";
  }
  body += "<w:tbl><w:tblPr><w:tblW w:w=\"9026\" w:type=\"dxa\"/></w:tblPr><w:tblGrid>";
  for (int i = 0; i < kColumns; ++i) body += "<w:gridCol w:w=\"1128\"/>";
  body += "</w:tblGrid>" + Row([](int i) { return "&lt;" + Name("field", i) + "&gt;"; }) +
          Row([](int) { return ""; }) + "</w:tbl><w:p/>";
  package->Replace(main, document.substr(0, document.find("<w:body>") + 8) + body +
                             document.substr(document.rfind("<w:sectPr")));
  return package->Write();
}

// A random price keeps the document from compressing to nothing.
std::string MakeQuote(int lines) {
  std::string xml = "<Data><quotefields>";
  for (int i = 0; i < kColumns; ++i) {
    xml += "<quotefield name='" + Name("Field", i) + "' templatetag='" + Name("tag-", i) +
           "' label='" + Name("Label ", i) + "'/>";
  }
  xml += "</quotefields><quoterows>";
  uint32_t random = 1;
  for (int line = 1; line <= lines; ++line) {
    xml += "<quoterow";
    for (int i = 0; i < kColumns; ++i) {
      random = random * 1664525 + 1013904223;
      xml += " " + Name("field", i) + "='Part " + std::to_string(random >> 12) + "'";
    }
    xml += "/>";
  }
  xml += "</quoterows>";
  for (int i = 0; i < kTags; ++i) {
    xml += "<field name='" + Name("n", i) + "' templatetag='" + Name("tag", i) + "'/>";
  }
  xml += "<Data>";
  for (int i = 0; i < kTags; ++i) {
    xml += "<row fieldname='" + Name("n", i) + "' value='the value of " + Name("n", i) + "'/>";
  }
  return xml + "</Data></Data>";
}

void Fail(const std::string& text) {
  std::fprintf(stderr, "%s\n", text.c_str());
  std::exit(1);
}

class Quotes {
 public:
  Quotes() { desktop::WriteFileAtomically(template_path_, MakeTemplate()); }

  // Makes the quote and returns how long that took; the file stays.
  double Make(const Value& xml, const fs::path& path) {
    const Member& member = *FindMember(u"WordQuote");
    std::vector<Value> values = {xml, FromUtf8(template_path_.string()), FromUtf8(path.string()),
                                 u"", u""};
    fs::remove(path);
    const double time = Seconds([&] { control_.Invoke(member, values); });
    if (!fs::exists(path)) Fail("no quote was made");
    return time;
  }
  fs::path Path(const char* name) const { return folder_.path() / name; }

 private:
  desktop::PrivateFolder folder_{"kestrelon-benchmark-"};
  const fs::path template_path_ = Path("quote.dotx");
  LinuxPlatform platform_{[](const String& text, int32_t, const std::optional<String>&) {
    Fail(ToUtf8(text));
    return 1;
  }};
  KestrelonControl control_{platform_};
};

// The median time of a round, its first run not counted, in a process of its own: what quotes
// of another size leave with the allocator would make these cheaper or dearer. The last one is put
// to `path`.
double MedianInOwnProcess(int lines, const fs::path& path) {
  int ends[2];
  if (pipe(ends) != 0) Fail("no pipe");
  const pid_t child = fork();
  if (child == 0) {
    std::vector<double> times;
    {
      Quotes quotes;
      const Value xml = XmlPageDocumentFromBytes(MakeQuote(lines));
      for (int i = 0; i < kRuns; ++i) times.push_back(quotes.Make(xml, path));
    }
    times.erase(times.begin());
    const double median = Median(times);
    _exit(write(ends[1], &median, sizeof median) == sizeof median ? 0 : 1);
  }
  close(ends[1]);
  double median = 0;
  if (read(ends[0], &median, sizeof median) != sizeof median) Fail("the child has failed");
  close(ends[0]);
  waitpid(child, nullptr, 0);
  return median;
}

}  // namespace

void MeasureWordQuotes() {
  const desktop::PrivateFolder folder("kestrelon-benchmark-");
  const fs::path made = folder.path() / "quote.docx";
  std::vector<double> some_times;
  std::vector<double> twice_times;
  std::vector<double> floor_times;
  for (int round = 0; round < kRounds; ++round) {
    twice_times.push_back(MedianInOwnProcess(2 * kLines, made));
    some_times.push_back(MedianInOwnProcess(kLines, made));
    const std::string package = desktop::ReadWholeFile(made);
    floor_times.push_back(Seconds([&] {
      if (RunFloor(package) == 0) Fail("the floor did nothing");
    }));
  }
  const double some_time = Median(some_times);
  const double twice_time = Median(twice_times);
  const double floor_time = Median(floor_times);
  std::printf("Word quotes: %d lines %.1f ms, %d lines %.1f ms, floor %.1f ms\n", kLines,
              some_time * 1e3, 2 * kLines, twice_time * 1e3, floor_time * 1e3);
  PrintRatio("Word quote of 2,000 lines with 8 columns / floor", some_time / floor_time, 8);
  PrintRatio("Word quote of 4,000 lines / 2,000 lines", twice_time / some_time, 2.3);
}

}  // namespace kestrelon::benchmarks
