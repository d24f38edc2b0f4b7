#include "platform/windows/WindowsPlatform.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "platform/windows/Handles.h"
#include "platform/windows/SystemTexts.h"

extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace kestrelon {
namespace {

// The system would end the text at a NUL, and the user would not see the rest of it.
String Shown(String text) {
  std::replace(text.begin(), text.end(), u'\0', u' ');
  return text;
}

// The head of a version resource: three lengths and types, its name, and the fixed record at the
// next border of four bytes.
struct VersionHead {
  WORD lengths_and_type[3];
  wchar_t name[16];  // "VS_VERSION_INFO" and NUL
  WORD padding;
  VS_FIXEDFILEINFO record;
};
constexpr DWORD kVersionSignature = 0xFEEF04BD;

FileVersion ReadComponentVersion() {
  const HMODULE module = ThisModule();
  const HRSRC place = FindResourceW(module, MAKEINTRESOURCEW(VS_VERSION_INFO), RT_VERSION);
  if (place == nullptr || SizeofResource(module, place) < sizeof(VersionHead)) return {};
  const void* bytes = LockResource(LoadResource(module, place));
  if (bytes == nullptr) return {};
  const VS_FIXEDFILEINFO& record = static_cast<const VersionHead*>(bytes)->record;
  if (record.dwSignature != kVersionSignature) return {};
  return {HIWORD(record.dwFileVersionMS), LOWORD(record.dwFileVersionMS),
          HIWORD(record.dwFileVersionLS), LOWORD(record.dwFileVersionLS)};
}

}  // namespace

HMODULE ThisModule() { return reinterpret_cast<HMODULE>(&__ImageBase); }

int32_t WindowsPlatform::ShowMessageBox(const String& text, int32_t flags,
                                        const std::optional<String>& title) {
  // A window that is gone could not own the box, and nothing would be shown.
  HWND owner = owner_window_();
  if (IsWindow(owner) == FALSE) owner = nullptr;
  return MessageBoxW(owner, AsWide(Shown(text)),
                     AsWide(Shown(title.value_or(kDefaultMessageTitle))), static_cast<UINT>(flags));
}

uint32_t WindowsPlatform::UserDefaultLocale() { return GetUserDefaultLCID(); }

int32_t WindowsPlatform::GetLocaleInfoAnsi(uint32_t locale, uint32_t type, char* buffer,
                                           int32_t size) {
  const int wide_size = GetLocaleInfoW(locale, type, nullptr, 0);
  if (wide_size <= 0) return 0;
  std::wstring text(static_cast<size_t>(wide_size), L'\0');
  const int length = GetLocaleInfoW(locale, type, text.data(), wide_size);
  if (length <= 0) return 0;
  const std::string bytes = NearestAnsi(FromWide({text.data(), static_cast<size_t>(length)}));
  const auto needed = static_cast<int32_t>(bytes.size());
  if (size == 0) return needed;
  if (size < needed) return 0;
  std::memcpy(buffer, bytes.data(), bytes.size());
  return needed;
}

Date WindowsPlatform::Now() {
  SYSTEMTIME now{};
  GetLocalTime(&now);
  return MakeDate({now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond});
}

FileVersion WindowsPlatform::ComponentVersion() {
  static const FileVersion version = ReadComponentVersion();
  return version;
}

int32_t WindowsPlatform::GetOsVersion(OsVersionRecord& record) {
  OSVERSIONINFOA version{};
  static_assert(sizeof version.szCSDVersion == sizeof record.service_pack);
  // Longer records exist, for which there is no room here.
  if (record.size != sizeof version) return 0;
  version.dwOSVersionInfoSize = record.size;
  const BOOL is_filled = GetVersionExA(&version);
  if (is_filled == FALSE) return 0;
  record.major_version = version.dwMajorVersion;
  record.minor_version = version.dwMinorVersion;
  record.build_number = version.dwBuildNumber;
  record.platform_id = version.dwPlatformId;
  std::memcpy(record.service_pack.data(), version.szCSDVersion, record.service_pack.size());
  return is_filled;
}

void WindowsPlatform::SendKeyEvent(uint8_t key_code, uint8_t scan_code, uint32_t flags,
                                   uint32_t extra_information) {
  keybd_event(key_code, scan_code, flags, extra_information);
}

std::optional<String> WindowsPlatform::CreateGuid() {
  GUID guid{};
  LPOLESTR text = nullptr;
  if (FAILED(CoCreateGuid(&guid)) || FAILED(StringFromCLSID(guid, &text))) return std::nullopt;
  const std::unique_ptr<OLECHAR, decltype(&CoTaskMemFree)> owner(text, &CoTaskMemFree);
  return FromWide(text);
}

SystemHandle WindowsPlatform::GetDesktopWindow() { return HandleOf(::GetDesktopWindow()); }

void WindowsPlatform::Pause(uint32_t milliseconds) {
  const ULONGLONG end = GetTickCount64() + milliseconds;
  for (ULONGLONG now = GetTickCount64(); now < end; now = GetTickCount64()) {
    const DWORD left = static_cast<DWORD>(end - now);
    if (MsgWaitForMultipleObjectsEx(0, nullptr, left, QS_SENDMESSAGE, 0) != WAIT_OBJECT_0) return;
    // Looking for them is what answers the sent ones; none is taken out of the queue.
    MSG message;
    PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
  }
}

}  // namespace kestrelon
