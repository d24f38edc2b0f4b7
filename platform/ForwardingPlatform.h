// A platform over another one, to which it hands everything on. Base of those that add something.
#pragma once

#include "platform/Platform.h"

namespace kestrelon {

class ForwardingPlatform : public Platform {
 public:
  // `platform` must outlive this one.
  explicit ForwardingPlatform(Platform& platform) : platform_(platform) {}

  Object CreateObject(StringView prog_id, StringView server) override {
    return platform_.CreateObject(prog_id, server);
  }
  Object GetRunningObject(StringView prog_id) override {
    return platform_.GetRunningObject(prog_id);
  }
  int32_t ShowMessageBox(const String& text, int32_t flags,
                         const std::optional<String>& title) override {
    return platform_.ShowMessageBox(text, flags, title);
  }
  uint32_t UserDefaultLocale() override { return platform_.UserDefaultLocale(); }
  int32_t GetLocaleInfoAnsi(uint32_t locale, uint32_t type, char* buffer, int32_t size) override {
    return platform_.GetLocaleInfoAnsi(locale, type, buffer, size);
  }
  uint32_t GetTempPathAnsi(uint32_t size, char* buffer) override {
    return platform_.GetTempPathAnsi(size, buffer);
  }
  Date Now() override { return platform_.Now(); }
  FileVersion ComponentVersion() override { return platform_.ComponentVersion(); }
  int32_t GetOsVersion(OsVersionRecord& record) override { return platform_.GetOsVersion(record); }
  void SendKeyEvent(uint8_t key_code, uint8_t scan_code, uint32_t flags,
                    uint32_t extra_information) override {
    platform_.SendKeyEvent(key_code, scan_code, flags, extra_information);
  }
  std::optional<String> CreateGuid() override { return platform_.CreateGuid(); }
  uint32_t GetTempFileNameAnsi(const char* folder, const char* prefix, uint32_t unique,
                               char* buffer) override {
    return platform_.GetTempFileNameAnsi(folder, prefix, unique, buffer);
  }
  SystemHandle GetDesktopWindow() override { return platform_.GetDesktopWindow(); }
  int32_t ShellExecute(SystemHandle window, const String& operation, const String& file,
                       const String& parameters, const String& directory, int32_t show) override {
    return platform_.ShellExecute(window, operation, file, parameters, directory, show);
  }
  SystemHandle OpenInternet(const String& agent, uint32_t access_type) override {
    return platform_.OpenInternet(agent, access_type);
  }
  SystemHandle OpenInternetUrl(SystemHandle connection, const String& url,
                               uint32_t flags) override {
    return platform_.OpenInternetUrl(connection, url, flags);
  }
  bool ReadInternetFile(SystemHandle file, char* buffer, uint32_t size,
                        uint32_t& bytes_read) override {
    return platform_.ReadInternetFile(file, buffer, size, bytes_read);
  }
  void CloseInternetHandle(SystemHandle handle) override { platform_.CloseInternetHandle(handle); }
  void Pause(uint32_t milliseconds) override { platform_.Pause(milliseconds); }

 private:
  Platform& platform_;
};

}  // namespace kestrelon
