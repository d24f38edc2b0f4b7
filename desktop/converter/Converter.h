// Conversions between document formats by LibreOffice, in a worker process of its own.
//
// The worker is started on first use with a private profile, kept warm, and ended with this object.
// A worker that crashes is restarted once per conversion; one that exceeds its deadline is killed
// with its whole process group. Macros are off, and links in a document reach neither files nor
// network.
#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "automation/AutomationError.h"

namespace kestrelon::desktop {

// The number of every failed conversion: Word's "Command failed". The description says what failed,
// why, and what to do (install LibreOffice, …).
constexpr int32_t kConversionFailed = 4198;

enum class ConversionFormat { kDocx, kDoc, kHtml, kPdf, kXlsx, kXls };

struct ConverterLimits {
  std::chrono::milliseconds start{20'000};
  std::chrono::milliseconds conversion{60'000};
};

class Converter {
 public:
  // A limit that is not positive, or over a day, is replaced by its default.
  explicit Converter(ConverterLimits limits = {});
  ~Converter();  // ends the worker and removes its profile
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  // Reads `source`, whatever its format (from a copy: nothing appears beside it), and writes
  // `target`, which appears only when it is complete and carries the signature of the format. HTML
  // is one self-contained file in Windows-1252 (pictures as data URIs, other characters as numeric
  // references), and read as HtmlSource.h says. Throws kConversionFailed, and the errors of
  // desktop/storage for a source that cannot be read and a target that cannot be written. One
  // conversion at a time; other threads wait.
  void Convert(const std::filesystem::path& source, const std::filesystem::path& target,
               ConversionFormat format);
  // The same for a document that is no file yet: `content`, under the plain name `file_name`, which
  // fields in the document may show. It is written below the worker's folder alone, which goes even
  // when this program is killed.
  void Convert(std::string_view content, const std::filesystem::path& file_name,
               const std::filesystem::path& target, ConversionFormat format);
  // The same, with the converted file's content as the result.
  std::string ConvertToBytes(const std::filesystem::path& source, ConversionFormat format);

  // The one converter of this process, with limits from the environment (KESTRELON_CONVERTER_START,
  // KESTRELON_CONVERTER_DEADLINE, seconds).
  static Converter& OfThisProcess();

 private:
  struct Implementation;
  std::unique_ptr<Implementation> self_;
};

}  // namespace kestrelon::desktop
