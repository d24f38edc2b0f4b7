#include "desktop/converter/Converter.h"

#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "automation/Text.h"
#include "desktop/converter/ConvertedFile.h"
#include "desktop/converter/Installation.h"
#include "desktop/converter/WorkerProcess.h"
#include "desktop/storage/AtomicFile.h"

namespace kestrelon::desktop {
namespace fs = std::filesystem;
using std::chrono::milliseconds;
using std::chrono::steady_clock;
namespace {

constexpr milliseconds kLongestLimit = std::chrono::hours(24);

struct FormatTraits {
  const char* name;       // for messages
  const char* extension;  // also the name by which the office suite chooses its filter
  const char* options;
};

FormatTraits TraitsOf(ConversionFormat format) {
  switch (format) {
    case ConversionFormat::kDocx:
      return {"a Word document", "docx", ""};
    case ConversionFormat::kDoc:
      return {"a Word 97 document", "doc", ""};
    case ConversionFormat::kHtml:
      return {"HTML", "html", "EmbedImages"};
    case ConversionFormat::kPdf:
      return {"PDF", "pdf", ""};
    case ConversionFormat::kXlsx:
      return {"an Excel workbook", "xlsx", ""};
    case ConversionFormat::kXls:
      return {"an Excel 97 workbook", "xls", ""};
  }
  throw AutomationError(kInvalidProcedureCall);
}

milliseconds Sound(milliseconds limit, milliseconds fallback) {
  return limit > milliseconds::zero() && limit <= kLongestLimit ? limit : fallback;
}

milliseconds SecondsFromEnvironment(const char* name, milliseconds fallback) {
  const char* text = std::getenv(name);
  if (text == nullptr) return fallback;
  double seconds = 0;
  const char* const end = text + std::strlen(text);
  const auto [stop, error] = std::from_chars(text, end, seconds);
  const bool sound = error == std::errc() && stop == end && seconds > 0 && seconds <= 86'400;
  return sound ? Sound(milliseconds(static_cast<int64_t>(seconds * 1000)), fallback) : fallback;
}

std::string InSeconds(milliseconds limit) {
  std::string text = std::to_string(static_cast<double>(limit.count()) / 1000);
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text + " s";
}

}  // namespace

struct Converter::Implementation {
  ConverterLimits limits;
  std::mutex one_at_a_time;
  std::optional<WorkerProcess> worker;

  // Fills `output` in the worker's job folder.
  void Run(const fs::path& source, ConversionFormat format, fs::path& output);
  void StartWorker(ConversionFormat format);
  Reply RunOnce(const fs::path& source, ConversionFormat format, fs::path& output,
                milliseconds limit);
};

void Converter::Implementation::StartWorker(ConversionFormat format) {
  worker.reset();
  worker.emplace(FindInstallation(format));
  const Reply reply = worker->WaitForReply(limits.start);
  if (reply.kind == ReplyKind::kDone) return;
  worker.reset();
  std::string reason = "LibreOffice does not start: " + reply.reason;
  if (reply.kind == ReplyKind::kCrashed) {
    reason = "LibreOffice crashes on its start; check that its installation is complete";
  } else if (reply.kind == ReplyKind::kTimedOut) {
    reason = "LibreOffice was not ready within " + InSeconds(limits.start) +
             "; allow more with KESTRELON_CONVERTER_START (seconds)";
  }
  throw AutomationError(kConversionFailed, FromUtf8(reason));
}

Reply Converter::Implementation::RunOnce(const fs::path& source, ConversionFormat format,
                                         fs::path& output, milliseconds limit) {
  const FormatTraits traits = TraitsOf(format);
  const fs::path folder = worker->job_folder();
  // The copy keeps its name, which fields in the document may show.
  const fs::path input = folder / "source" / source.filename();
  output = folder / (std::string("target.") + traits.extension);
  std::error_code error;
  fs::remove_all(folder, error);  // no earlier output may pass for this one's
  fs::create_directories(input.parent_path(), error);
  fs::copy_file(source, input, error);
  if (error) throw FileError(error.value(), source);
  const std::string separator(1, '\0');
  Reply reply = worker->Ask(input.string() + separator + output.string() + separator +
                                traits.extension + separator + traits.options,
                            limit);
  fs::remove_all(input.parent_path(), error);
  return reply;
}

void Converter::Implementation::Run(const fs::path& source, ConversionFormat format,
                                    fs::path& output) {
  milliseconds spent{0};
  for (int attempt = 1; attempt <= 2; ++attempt) {
    if (!worker || !worker->IsAlive()) StartWorker(format);
    const auto start = steady_clock::now();
    const Reply reply = RunOnce(source, format, output, limits.conversion - spent);
    spent += std::chrono::duration_cast<milliseconds>(steady_clock::now() - start);
    if (reply.kind == ReplyKind::kDone) return;
    if (reply.kind == ReplyKind::kFailed) {
      throw AutomationError(kConversionFailed, FromUtf8(reply.reason));
    }
    worker.reset();
    if (reply.kind == ReplyKind::kTimedOut) {
      throw AutomationError(
          kConversionFailed,
          FromUtf8("LibreOffice did not finish within " + InSeconds(limits.conversion) +
                   " and was ended; allow more with KESTRELON_CONVERTER_DEADLINE (seconds)"));
    }
  }
  throw AutomationError(kConversionFailed,
                        u"LibreOffice crashed on it twice; check that the document is undamaged");
}

Converter::Converter(ConverterLimits limits) : self_(std::make_unique<Implementation>()) {
  self_->limits.start = Sound(limits.start, ConverterLimits().start);
  self_->limits.conversion = Sound(limits.conversion, ConverterLimits().conversion);
}

Converter::~Converter() = default;

void Converter::Convert(const fs::path& source, const fs::path& target, ConversionFormat format) {
  const std::scoped_lock lock(self_->one_at_a_time);
  const FormatTraits traits = TraitsOf(format);
  // Before a worker is started in vain.
  if (access(source.c_str(), R_OK) != 0) throw FileError(errno, source);
  fs::path output;
  try {
    self_->Run(source, format, output);
    const std::string content = fs::exists(output) ? ReadWholeFile(output) : std::string();
    if (!HasSignature(content, format)) {
      throw AutomationError(kConversionFailed, u"what LibreOffice wrote is incomplete");
    }
    if (format == ConversionFormat::kHtml) WriteFileAtomically(output, FinishHtml(content));
  } catch (const AutomationError& error) {
    if (error.number() != kConversionFailed) throw;
    throw AutomationError(kConversionFailed, FromUtf8("Cannot convert " + source.string() + " to " +
                                                      traits.name + ": ") +
                                                 error.description());
  }
  MoveFileIntoPlace(output, target);
}

Converter& Converter::OfThisProcess() {
  static Converter converter(
      {SecondsFromEnvironment("KESTRELON_CONVERTER_START", ConverterLimits().start),
       SecondsFromEnvironment("KESTRELON_CONVERTER_DEADLINE", ConverterLimits().conversion)});
  return converter;
}

}  // namespace kestrelon::desktop
