// A mailbox of many contacts against plain loops over the same files: one page that exports records
// one after the other, and one that lists a folder. Each size runs in a process of its own, so that
// its peak memory is its own.

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "Control/KestrelonControl.h"
#include "benchmarks/MailboxFloor.h"
#include "benchmarks/Timing.h"
#include "desktop/storage/AtomicFile.h"
#include "platform/linux/LinuxPlatform.h"

namespace kestrelon::benchmarks {
namespace {

namespace fs = std::filesystem;

constexpr int kRounds = 5;     // of what takes long; the median counts
constexpr int kExports = 400;  // further calls; likewise

// Seconds and MiB.
struct Measures {
  double read_floor = 0;
  double first_export = 0;  // with the binding of the folder
  double next_export = 0;
  double write_floor = 0;
  double listing = 0;
  double memory = 0;
};

double MedianSeconds(int rounds, const std::function<void()>& action) {
  std::vector<double> times;
  for (int round = 0; round < rounds; ++round) times.push_back(Seconds(action));
  return Median(times);
}

// A contact as the control writes it, of the `number`-th person.
std::string Card(int number) {
  const std::string n = std::to_string(number);
  return "BEGIN:VCARD\r\nVERSION:3.0\r\nPRODID:-//Kestrelon//Benchmark//EN\r\nUID:person-" + n +
         "\r\nN:Family" + n + ";Given" + n + ";;Dr;\r\nFN:Dr Given" + n + " Family" + n +
         "\r\nORG:Harbour Instruments Ltd;Purchasing\r\nTITLE:Buyer\r\n"
         "ADR;TYPE=WORK:;;" +
         n +
         " Quay Street\\nBuilding 7\\n;Bristol;Avon;BS1 4ND;United Kingdom\r\n"
         "ADR;TYPE=HOME:;;5 Mill Lane\\n\\n;Bath;Somerset;BA1 1AA;United Kingdom\r\n"
         "TEL;TYPE=WORK,VOICE:+44 117 496 " +
         n + "\r\nTEL;TYPE=WORK,FAX:+44 117 497 " + n + "\r\nTEL;TYPE=CELL:+44 7700 " + n +
         "\r\nEMAIL;TYPE=INTERNET:person" + n + "@example.com\r\nEMAIL;TYPE=INTERNET:p" + n +
         "@example.org\r\nURL;TYPE=WORK:https://example.com/\r\nX-KESTRELON-USER1:Kestrelon\r\n"
         "X-KESTRELON-USER2:Perm\r\nX-KESTRELON-USER3:" +
         n + "\r\nX-KESTRELON-PROPERTY;X-NAME=KESTID;X-TYPE=1:" + n +
         "\r\nX-KESTRELON-PROPERTY;X-NAME=Kestrelon;X-TYPE=1:true\r\nEND:VCARD\r\n";
}

String Record(int number) {
  const std::string n = std::to_string(number);
  std::string xml = "<record id=\"" + n + "\">";
  const auto add = [&xml](const std::string& name, const std::string& value) {
    xml += "<field name=\"" + name + "\" value=\"" + value + "\"/>";
  };
  add("ACCOUNT_NAME", "Harbour Instruments Ltd");
  add("FIRSTNAME", "Given" + n);
  add("LASTNAME", "Family" + n);
  add("JOBTITLE", "Buyer");
  add("BUSINESSADDRESSSTREET", n + " Quay Street");
  add("BUSINESSADDRESSCITY", "Bristol");
  add("BUSINESSADDRESSPOSTALCODE", "BS1 4ND");
  add("BUSINESSTELEPHONENUMBER", "+44 117 496 " + n);
  add("MOBILETELEPHONENUMBER", "+44 7700 " + n);
  add("EMAIL1ADDRESS", "person" + n + "@example.com");
  add("BUSINESSHOMEPAGE", "https://example.com/");
  return FromUtf8(xml + "</record>");
}

// A control that ends the run at the first message box: none belongs here.
class Page {
 public:
  Value Call(StringView member, std::vector<Value> values) {
    return control_.Invoke(*FindMember(member), values);
  }

 private:
  LinuxPlatform platform_{[](const String& text, int32_t, const std::optional<String>&) {
    std::fprintf(stderr, "%s\n", ToUtf8(text).c_str());
    std::exit(1);
    return 1;
  }};
  KestrelonControl control_{platform_};
};

Measures Measure(int contacts) {
  desktop::PrivateFolder mailbox("kestrelon-benchmark-");
  const fs::path folder = mailbox.path() / "Contacts";
  const fs::path copies = mailbox.path() / "copies";
  setenv("KESTRELON_MAILBOX", mailbox.path().c_str(), 1);
  for (const fs::path& place : {folder, copies}) {
    fs::create_directories(place);
    for (int number = 0; number < contacts; ++number) {
      std::ofstream(place / ("person-" + std::to_string(number) + ".vcf")) << Card(number);
    }
  }

  Measures measures;
  ReadEveryFile(folder);  // warms the cache
  measures.read_floor = MedianSeconds(kRounds, [&] { ReadEveryFile(folder); });
  int next = contacts;
  const auto export_next = [&next](Page& page) {
    page.Call(u"AddUpdateContactXML", {Record(next++), true, true});
  };
  Page().Call(u"SetContactFolder", {u"Contacts"});  // notes the order of the files
  std::vector<double> times;
  for (int round = 0; round < kRounds; ++round) {
    Page page;
    times.push_back(Seconds([&] {
      page.Call(u"SetContactFolder", {u"Contacts"});
      export_next(page);
    }));
  }
  measures.first_export = Median(times);
  Page page;
  page.Call(u"SetContactFolder", {u"Contacts"});
  export_next(page);
  // In turns, so that both meet the same moods of the disk.
  const std::string card = Card(contacts);
  std::vector<double> exports;
  std::vector<double> floors;
  for (int copy = 0; copy < kExports; ++copy) {
    exports.push_back(Seconds([&] { export_next(page); }));
    floors.push_back(
        Seconds([&] { WriteOneFile(copies, "new-" + std::to_string(copy) + ".vcf", card); }));
  }
  measures.next_export = Median(exports);
  measures.write_floor = Median(floors);
  page.Call(u"CleanUpOutlook", {});
  measures.listing = MedianSeconds(kRounds, [&] { page.Call(u"GetFolderContactItems", {u""}); });
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  measures.memory = static_cast<double>(usage.ru_maxrss) / 1024;
  return measures;
}

Measures MeasureApart(int contacts) {
  int ends[2];
  if (pipe(ends) != 0) throw std::runtime_error("no pipe");
  const pid_t child = fork();
  if (child == 0) {
    const Measures measures = Measure(contacts);
    const bool is_told = write(ends[1], &measures, sizeof measures) == sizeof measures;
    std::_Exit(is_told ? 0 : 1);
  }
  close(ends[1]);
  Measures measures;
  const bool is_told = read(ends[0], &measures, sizeof measures) == sizeof measures;
  close(ends[0]);
  int status = 0;
  waitpid(child, &status, 0);
  if (!is_told || status != 0) throw std::runtime_error("a measurement failed");
  std::printf(
      "%6d contacts: read floor %.3f s, first export %.3f s, next export %.3f ms, write floor "
      "%.3f ms, listing %.3f s, memory %.0f MiB\n",
      contacts, measures.read_floor, measures.first_export, measures.next_export * 1e3,
      measures.write_floor * 1e3, measures.listing, measures.memory);
  return measures;
}

int Main() {
  const Measures small = MeasureApart(10'000);
  const Measures middle = MeasureApart(50'000);
  const Measures large = MeasureApart(100'000);
  PrintRatio("first export of 50,000 / reading the files", middle.first_export / middle.read_floor,
             2.5);
  PrintRatio("first export of 100,000 / of 50,000", large.first_export / middle.first_export, 2.2);
  PrintRatio("further export among 100,000 / among 10,000", large.next_export / small.next_export,
             1.3);
  PrintRatio("further export among 10,000 / writing a file", small.next_export / small.write_floor,
             1.5);
  PrintRatio("further export among 100,000 / writing a file", large.next_export / large.write_floor,
             1.5);
  PrintRatio("listing 50,000 / reading the files", middle.listing / middle.read_floor, 4);
  PrintRatio("listing 100,000 / 50,000", large.listing / middle.listing, 2.3);
  PrintRatio("peak memory at 100,000 in MiB", large.memory, 400);
  return 0;
}

}  // namespace
}  // namespace kestrelon::benchmarks

int main() { return kestrelon::benchmarks::Main(); }
