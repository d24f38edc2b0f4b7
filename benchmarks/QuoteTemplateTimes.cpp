#include <cstdlib>
#include <string>

#include "benchmarks/QuoteBenchmark.h"
#include "benchmarks/Timing.h"
#include "desktop/storage/AtomicFile.h"
#include "desktop/storage/Paths.h"
#include "desktop/xml/XmlDocuments.h"
#include "documents/QuoteTemplate.h"
#include "platform/linux/LinuxPlatform.h"

namespace kestrelon::benchmarks {
namespace {

constexpr int kRounds = 15;  // the median counts

struct Field {
  const char* name;
  const char* value;  // with the line's number behind it
};
constexpr Field kFields[] = {{"lineitem", ""},
                             {"product", "Flanged coupling "},
                             {"description", "Steel, DN 80, PN "},
                             {"code", "FC-80-"},
                             {"family", "Couplings "},
                             {"quantity", "1"},
                             {"unit", "piece "},
                             {"listprice", "148.5"},
                             {"discount", "12."},
                             {"quotedprice", "130."},
                             {"total", "1306."},
                             {"delivery", "ex works, week "}};

std::string MakeQuote(int lines) {
  std::string xml = "<Data><quotefields>";
  for (const Field& field : kFields) {
    xml += std::string("<quotefield name=\"") + field.name + "\" templatetag=\"\" label=\"My " +
           field.name + "\"/>";
  }
  xml += "</quotefields><quoterows>";
  for (int line = 1; line <= lines; ++line) {
    xml += "<row";
    for (const Field& field : kFields) {
      // Ten lines make a family, which has a header.
      const int number = field.name == std::string("family") ? line / 10 : line;
      xml += std::string(" ") + field.name + "=\"" + field.value + std::to_string(number) + "\"";
    }
    xml += "/>";
  }
  return xml + "</quoterows></Data>";
}

std::string MakeTemplate() {
  std::string cells;
  for (const Field& field : kFields) {
    cells += "<td class=\"line\">&lt;" + ToUtf8(UpperCase(FromUtf8(field.name))) + "&gt;</td>\r\n";
  }
  return "<html><body><table>\r\n<!-- QuoteRowStart --><tr>\r\n" + cells +
         "</tr><!-- QuoteRowEnd -->\r\n<!-- QuoteGroupStart --><tr><th colspan=\"12\">"
         "&lt;FAMILY&gt;</th></tr><!-- QuoteGroupEnd -->\r\n</table></body></html>\r\n";
}

// Reads every value of every line once.
size_t ReadEveryValue(const Object& quote) {
  const Object lines =
      quote.CallChild(u"selectSingleNode", u"Data/quoterows").GetChild(u"childNodes");
  std::vector<String> names;
  for (const Field& field : kFields) names.push_back(FromUtf8(field.name));
  size_t length = 0;
  const int32_t count = lines.Get(u"length").ToLong();
  for (int32_t i = 0; i < count; ++i) {
    const Object line = lines.CallChild(u"item", i);
    for (const String& name : names) length += line.Call(u"getAttribute", name).ToText().size();
  }
  return length;
}

class TemplateRun {
 public:
  explicit TemplateRun(int lines) : quote_(desktop::ParseXmlDocument(MakeQuote(lines))) {}

  double ReadSeconds() const {
    return Seconds([&] {
      if (ReadEveryValue(quote_) == 0) std::abort();
    });
  }
  double ExpandSeconds() {
    desktop::WriteFileAtomically(file_, template_);
    return Seconds([&] { ExpandQuoteTemplate(context_, desktop::TextFromPath(file_), quote_); });
  }
  double FileMegabytes() const {
    return static_cast<double>(std::filesystem::file_size(file_)) / 1e6;
  }

 private:
  LinuxPlatform platform_{[](const String& text, int32_t, const std::optional<String>&) {
    std::fprintf(stderr, "%s\n", ToUtf8(text).c_str());
    std::exit(1);
    return 1;
  }};
  ControlContext context_{platform_};
  desktop::PrivateFolder folder_{"kestrelon-benchmark-"};
  const std::filesystem::path file_ = folder_.path() / "lines.htm";
  const std::string template_ = MakeTemplate();
  const Object quote_;
};

}  // namespace

void MeasureQuoteTemplates() {
  TemplateRun lines(10'000);
  TemplateRun twice_the_lines(20'000);
  // In turns, so that all meet the same moods of the machine.
  std::vector<double> read;
  std::vector<double> expand;
  std::vector<double> expand_twice;
  for (int round = 0; round < kRounds; ++round) {
    read.push_back(lines.ReadSeconds());
    expand.push_back(lines.ExpandSeconds());
    expand_twice.push_back(twice_the_lines.ExpandSeconds());
  }
  std::printf(
      "template of 10,000 lines, 12 fields: reading %.3f s, %.3f s to %.1f MB; of 20,000: "
      "%.3f s\n",
      Median(read), Median(expand), lines.FileMegabytes(), Median(expand_twice));
  PrintRatio("template of 20,000 lines / of 10,000", Median(expand_twice) / Median(expand), 2.2);
  PrintRatio("template of 10,000 lines / reading every value once", Median(expand) / Median(read),
             3);
}

}  // namespace kestrelon::benchmarks
