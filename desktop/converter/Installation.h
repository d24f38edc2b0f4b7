// Where the office suite and the worker program are.
#pragma once

#include <filesystem>

#include "desktop/converter/Converter.h"

namespace kestrelon::desktop {

struct Installation {
  std::filesystem::path program_folder;  // of LibreOffice, absolute
  std::filesystem::path worker;          // the program kestrelon-converter
};

// LibreOffice: $KESTRELON_LIBREOFFICE (its program folder), else /usr/lib/libreoffice/program or
// /opt/libreoffice*/program. The worker: $KESTRELON_CONVERTER_WORKER, else kestrelon-converter
// beside the running program or in ../libexec/kestrelon or ../lib/kestrelon from there. Looked up
// on every call: it costs a few file look-ups, and an installation may come or go while we run.
// Throws kConversionFailed, naming what to install, when one of them, or the application that
// `format` needs, is missing.
Installation FindInstallation(ConversionFormat format);

}  // namespace kestrelon::desktop
