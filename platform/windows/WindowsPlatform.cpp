#include "platform/windows/WindowsPlatform.h"

#include <wininet.h>

#include <cstring>

#include "platform/windows/ComErrors.h"
#include "platform/windows/DispatchClient.h"
#include "platform/windows/Variants.h"

extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace kestrelon {
namespace {

CLSID ClassOf(StringView prog_id) {
  CLSID clsid{};
  CheckCreated(CLSIDFromProgID(AsWide(String(prog_id)), &clsid));
  return clsid;
}

SystemHandle HandleOf(void* handle) { return reinterpret_cast<SystemHandle>(handle); }
HINTERNET InternetHandle(SystemHandle handle) { return reinterpret_cast<HINTERNET>(handle); }

}  // namespace

HMODULE ThisModule() { return reinterpret_cast<HMODULE>(&__ImageBase); }

Object WindowsPlatform::CreateObject(StringView prog_id, StringView server) {
  const CLSID clsid = ClassOf(prog_id);
  String name(server);
  COSERVERINFO machine{};
  machine.pwszName = const_cast<wchar_t*>(AsWide(name));
  MULTI_QI wanted{&IID_IDispatch, nullptr, S_OK};
  CheckCreated(CoCreateInstanceEx(clsid, nullptr,
                                  server.empty() ? CLSCTX_SERVER : CLSCTX_REMOTE_SERVER,
                                  server.empty() ? nullptr : &machine, 1, &wanted));
  ComPtr<IUnknown> created;
  created.Attach(wanted.pItf);
  const Object object = ObjectOf(created.Get());
  if (LowerCase(prog_id).starts_with(u"msxml2.domdocument")) {
    object.Call(u"setProperty", u"SelectionLanguage", u"XPath");
  }
  return object;
}

Object WindowsPlatform::GetRunningObject(StringView prog_id) {
  ComPtr<IUnknown> running;
  CheckCreated(GetActiveObject(ClassOf(prog_id), nullptr, &running));
  return ObjectOf(running.Get());
}

int32_t WindowsPlatform::ShowMessageBox(const String& text, int32_t flags,
                                        const std::optional<String>& title) {
  return MessageBoxW(owner_window_(), AsWide(text), title ? AsWide(*title) : nullptr,
                     static_cast<UINT>(flags));
}

uint32_t WindowsPlatform::UserDefaultLocale() { return GetUserDefaultLCID(); }

int32_t WindowsPlatform::GetLocaleInfoAnsi(uint32_t locale, uint32_t type, char* buffer,
                                           int32_t size) {
  return GetLocaleInfoA(locale, type, buffer, size);
}

uint32_t WindowsPlatform::GetTempPathAnsi(uint32_t size, char* buffer) {
  return GetTempPathA(size, buffer);
}

Date WindowsPlatform::Now() {
  SYSTEMTIME now{};
  GetLocalTime(&now);
  return MakeDate({now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond});
}

FileVersion WindowsPlatform::ComponentVersion() { return {}; }

int32_t WindowsPlatform::GetOsVersion(OsVersionRecord& record) {
  OSVERSIONINFOA version{};
  version.dwOSVersionInfoSize = record.size;
  if (GetVersionExA(&version) == 0) return 0;
  record.major_version = version.dwMajorVersion;
  record.minor_version = version.dwMinorVersion;
  record.build_number = version.dwBuildNumber;
  record.platform_id = version.dwPlatformId;
  std::memcpy(record.service_pack.data(), version.szCSDVersion, record.service_pack.size());
  return 1;
}

void WindowsPlatform::SendKeyEvent(uint8_t key_code, uint8_t scan_code, uint32_t flags,
                                   uint32_t extra_information) {
  keybd_event(key_code, scan_code, flags, extra_information);
}

std::optional<String> WindowsPlatform::CreateGuid() {
  GUID guid{};
  LPOLESTR text = nullptr;
  if (FAILED(CoCreateGuid(&guid)) || FAILED(StringFromCLSID(guid, &text))) return std::nullopt;
  const String result = FromWide(text);
  CoTaskMemFree(text);
  return result;
}

uint32_t WindowsPlatform::GetTempFileNameAnsi(const char* folder, const char* prefix,
                                              uint32_t unique, char* buffer) {
  return GetTempFileNameA(folder, prefix, unique, buffer);
}

SystemHandle WindowsPlatform::GetDesktopWindow() { return HandleOf(::GetDesktopWindow()); }

int32_t WindowsPlatform::ShellExecute(SystemHandle window, const String& operation,
                                      const String& file, const String& parameters,
                                      const String& directory, int32_t show) {
  return static_cast<int32_t>(reinterpret_cast<intptr_t>(
      ShellExecuteW(reinterpret_cast<HWND>(window), AsWide(operation), AsWide(file),
                    AsWide(parameters), AsWide(directory), show)));
}

SystemHandle WindowsPlatform::OpenInternet(const String& agent, uint32_t access_type) {
  return HandleOf(InternetOpenA(ToAnsi(agent).c_str(), access_type, nullptr, nullptr, 0));
}

SystemHandle WindowsPlatform::OpenInternetUrl(SystemHandle connection, const String& url,
                                              uint32_t flags) {
  return HandleOf(
      InternetOpenUrlA(InternetHandle(connection), ToAnsi(url).c_str(), nullptr, 0, flags, 0));
}

bool WindowsPlatform::ReadInternetFile(SystemHandle file, char* buffer, uint32_t size,
                                       uint32_t& bytes_read) {
  DWORD read = 0;
  const bool is_read = InternetReadFile(InternetHandle(file), buffer, size, &read) != FALSE;
  bytes_read = read;
  return is_read;
}

void WindowsPlatform::CloseInternetHandle(SystemHandle handle) {
  InternetCloseHandle(InternetHandle(handle));
}

void WindowsPlatform::Pause(uint32_t milliseconds) { Sleep(milliseconds); }

}  // namespace kestrelon
