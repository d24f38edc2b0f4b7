#include "desktop/converter/Converter.h"

#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "automation/Text.h"
#include "desktop/converter/ConvertedFile.h"
#include "desktop/converter/HtmlSource.h"
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

// A file, or the content of one to be and the name for it.
struct Source {
  fs::path path;
  std::optional<std::string_view> content;
};

// Under the source's own name, which fields in the document may show.
fs::path CopyTo(const fs::path& folder, const Source& source) {
  std::error_code error;
  fs::create_directories(folder, error);
  fs::path copy = folder / source.path.filename();
  if (source.content) {
    // The name of the target may have grown by a longer extension.
    if (copy.filename().native().size() > NAME_MAX) copy.replace_filename("document.docx");
    WriteFileAtomically(copy, *source.content);
    return copy;
  }
  const String extension = LowerCase(FromUtf8(source.path.extension().string()));
  if (extension == u".htm" || extension == u".html") {
    WriteFileAtomically(copy, PrepareHtml(ReadWholeFile(source.path)));
    return copy;
  }
  fs::copy_file(source.path, copy, error);
  if (error) throw FileError(error.value(), source.path);
  return copy;
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

  // The content of `output`, a file in the worker's job folder.
  std::string Convert(const Source& source, ConversionFormat format, fs::path& output);
  void Run(const Source& source, ConversionFormat format, fs::path& output);
  void StartWorker(ConversionFormat format);
  Reply RunOnce(const Source& source, ConversionFormat format, fs::path& output,
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

Reply Converter::Implementation::RunOnce(const Source& source, ConversionFormat format,
                                         fs::path& output, milliseconds limit) {
  const FormatTraits traits = TraitsOf(format);
  const fs::path folder = worker->job_folder();
  output = folder / (std::string("target.") + traits.extension);
  std::error_code error;
  fs::remove_all(folder, error);  // no earlier output may pass for this one's
  const fs::path input = CopyTo(folder / "source", source);
  const std::string separator(1, '\0');
  Reply reply = worker->Ask(input.string() + separator + output.string() + separator +
                                traits.extension + separator + traits.options,
                            limit);
  fs::remove_all(input.parent_path(), error);
  return reply;
}

void Converter::Implementation::Run(const Source& source, ConversionFormat format,
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

std::string Converter::Implementation::Convert(const Source& source, ConversionFormat format,
                                               fs::path& output) {
  // Before a worker is started in vain.
  if (!source.content && access(source.path.c_str(), R_OK) != 0) {
    throw FileError(errno, source.path);
  }
  try {
    Run(source, format, output);
    std::string content = fs::exists(output) ? ReadWholeFile(output) : std::string();
    if (!HasSignature(content, format)) {
      throw AutomationError(kConversionFailed, u"what LibreOffice wrote is incomplete");
    }
    if (format != ConversionFormat::kHtml) return content;
    content = FinishHtml(content);
    WriteFileAtomically(output, content);
    return content;
  } catch (const AutomationError& error) {
    if (error.number() != kConversionFailed) throw;
    throw AutomationError(kConversionFailed, FromUtf8("Cannot convert " + source.path.string() +
                                                      " to " + TraitsOf(format).name + ": ") +
                                                 error.description());
  }
}

Converter::Converter(ConverterLimits limits) : self_(std::make_unique<Implementation>()) {
  self_->limits.start = Sound(limits.start, ConverterLimits().start);
  self_->limits.conversion = Sound(limits.conversion, ConverterLimits().conversion);
}

Converter::~Converter() = default;

void Converter::Convert(const fs::path& source, const fs::path& target, ConversionFormat format) {
  const std::scoped_lock lock(self_->one_at_a_time);
  fs::path output;
  self_->Convert({source, std::nullopt}, format, output);
  MoveFileIntoPlace(output, target);
}

void Converter::Convert(std::string_view content, const fs::path& file_name, const fs::path& target,
                        ConversionFormat format) {
  const std::scoped_lock lock(self_->one_at_a_time);
  fs::path output;
  self_->Convert({file_name, content}, format, output);
  MoveFileIntoPlace(output, target);
}

std::string Converter::ConvertToBytes(const fs::path& source, ConversionFormat format) {
  const std::scoped_lock lock(self_->one_at_a_time);
  fs::path output;
  return self_->Convert({source, std::nullopt}, format, output);
}

Converter& Converter::OfThisProcess() {
  static Converter converter(
      {SecondsFromEnvironment("KESTRELON_CONVERTER_START", ConverterLimits().start),
       SecondsFromEnvironment("KESTRELON_CONVERTER_DEADLINE", ConverterLimits().conversion)});
  return converter;
}

}  // namespace kestrelon::desktop
