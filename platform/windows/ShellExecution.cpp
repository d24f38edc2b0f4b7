#include "platform/windows/Handles.h"
#include "platform/windows/SystemTexts.h"
#include "platform/windows/WindowsPlatform.h"

namespace kestrelon {
namespace {

// In characters. Paths end at 260, and the shell need not survive more than an address has: Wine's
// overruns its stack from 980 on.
constexpr size_t kLongestFile = 900;

HINSTANCE Execute(HWND window, const String& operation, const String& file,
                  const String& parameters, const String& directory, int32_t show) {
  if (const auto texts = InSystemCodePage({operation, file, parameters, directory})) {
    return ShellExecuteA(window, texts->at(0).c_str(), texts->at(1).c_str(), texts->at(2).c_str(),
                         texts->at(3).c_str(), show);
  }
  return ShellExecuteW(window, AsWide(operation), AsWide(file), AsWide(parameters),
                       AsWide(directory), show);
}

}  // namespace

int32_t WindowsPlatform::ShellExecute(SystemHandle window, const String& operation,
                                      const String& file, const String& parameters,
                                      const String& directory, int32_t show) {
  // A NUL would end the name that the system sees, and another file would be opened.
  if (file.size() > kLongestFile || file.find(u'\0') != String::npos) return ERROR_FILE_NOT_FOUND;
  const HINSTANCE code =
      Execute(static_cast<HWND>(PointerOf(window)), operation, file, parameters, directory, show);
  return static_cast<int32_t>(reinterpret_cast<intptr_t>(code));
}

}  // namespace kestrelon
