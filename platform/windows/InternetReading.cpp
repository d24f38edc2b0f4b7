#include "platform/windows/Handles.h"
#include "platform/windows/SystemTexts.h"
#include "platform/windows/WindowsPlatform.h"
// Stands on the Windows headers.
#include <wininet.h>

namespace kestrelon {

SystemHandle WindowsPlatform::OpenInternet(const String& agent, uint32_t access_type) {
  if (const auto texts = InSystemCodePage({agent})) {
    return HandleOf(InternetOpenA(texts->front().c_str(), access_type, nullptr, nullptr, 0));
  }
  return HandleOf(InternetOpenW(AsWide(agent), access_type, nullptr, nullptr, 0));
}

SystemHandle WindowsPlatform::OpenInternetUrl(SystemHandle connection, const String& url,
                                              uint32_t flags) {
  // A NUL would end the address, and another page would be read.
  if (url.find(u'\0') != String::npos) return 0;
  const HINTERNET opened = PointerOf(connection);
  if (const auto texts = InSystemCodePage({url})) {
    return HandleOf(InternetOpenUrlA(opened, texts->front().c_str(), nullptr, 0, flags, 0));
  }
  return HandleOf(InternetOpenUrlW(opened, AsWide(url), nullptr, 0, flags, 0));
}

bool WindowsPlatform::ReadInternetFile(SystemHandle file, char* buffer, uint32_t size,
                                       uint32_t& bytes_read) {
  DWORD read = 0;
  const bool is_read = InternetReadFile(PointerOf(file), buffer, size, &read) != FALSE;
  bytes_read = is_read ? read : 0;
  return is_read;
}

void WindowsPlatform::CloseInternetHandle(SystemHandle handle) {
  InternetCloseHandle(PointerOf(handle));
}

}  // namespace kestrelon
