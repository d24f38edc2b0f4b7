#include "desktop/converter/Installation.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "automation/Text.h"

namespace kestrelon::desktop {
namespace fs = std::filesystem;
namespace {

constexpr char kWorkerName[] = "kestrelon-converter";

fs::path FromEnvironment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? fs::path() : fs::path(value);
}

bool Exists(const fs::path& path) {
  std::error_code ignored;
  return fs::exists(path, ignored);
}

bool HoldsLibreOffice(const fs::path& folder) {
  return Exists(folder / "libsofficeapp.so") || Exists(folder / "libmergedlo.so");
}

[[noreturn]] void Fail(const std::string& description) {
  throw AutomationError(kConversionFailed, FromUtf8(description));
}

fs::path FindLibreOffice() {
  const fs::path chosen = FromEnvironment("KESTRELON_LIBREOFFICE");
  if (!chosen.empty()) {
    if (HoldsLibreOffice(chosen)) return fs::absolute(chosen);
    Fail("KESTRELON_LIBREOFFICE names " + chosen.string() +
         ", which is not LibreOffice's program folder; correct or unset it, or install the Debian "
         "package libreoffice-writer-nogui");
  }
  std::vector<fs::path> candidates;
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator("/opt", ignored)) {
    if (entry.path().filename().string().starts_with("libreoffice")) {
      candidates.push_back(entry.path() / "program");
    }
  }
  std::sort(candidates.rbegin(), candidates.rend());  // the highest version first
  candidates.insert(candidates.begin(), "/usr/lib/libreoffice/program");
  const auto found = std::find_if(candidates.begin(), candidates.end(), HoldsLibreOffice);
  if (found != candidates.end()) return *found;
  Fail(
      "LibreOffice is not installed; install the Debian package libreoffice-writer-nogui, or set "
      "KESTRELON_LIBREOFFICE to the program folder of an installation");
}

void RequireApplication(const fs::path& program_folder, ConversionFormat format) {
  const bool sheet = format == ConversionFormat::kXlsx || format == ConversionFormat::kXls;
  const std::string name = sheet ? "calc" : "writer";
  if (Exists(program_folder / "../share/registry" / (name + ".xcd"))) return;
  Fail("LibreOffice in " + program_folder.string() + " lacks " + (sheet ? "Calc" : "Writer") +
       "; install the Debian package libreoffice-" + name + "-nogui");
}

fs::path FindWorker() {
  const fs::path chosen = FromEnvironment("KESTRELON_CONVERTER_WORKER");
  if (!chosen.empty()) {
    if (Exists(chosen)) return fs::absolute(chosen);
    Fail("KESTRELON_CONVERTER_WORKER names " + chosen.string() +
         ", which does not exist; correct or unset it");
  }
  std::error_code ignored;
  const fs::path here = fs::read_symlink("/proc/self/exe", ignored).parent_path();
  for (const char* folder : {".", "../libexec/kestrelon", "../lib/kestrelon"}) {
    const fs::path candidate = here / folder / kWorkerName;
    if (Exists(candidate)) return candidate.lexically_normal();
  }
  Fail(std::string("the program ") + kWorkerName + " is missing beside " + here.string() +
       "; install Kestrelon again, or set KESTRELON_CONVERTER_WORKER to the program");
}

}  // namespace

Installation FindInstallation(ConversionFormat format) {
  Installation installation{FindLibreOffice(), FindWorker()};
  RequireApplication(installation.program_folder, format);
  return installation;
}

}  // namespace kestrelon::desktop
