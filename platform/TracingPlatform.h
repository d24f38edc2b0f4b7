// A platform that traces: it hands everything on to another one and writes a line for every
// automation call, those that create or attach to a server included.
#pragma once

#include "automation/TracingObject.h"
#include "platform/Platform.h"

namespace kestrelon {

class TracingPlatform final : public Platform {
 public:
  TracingPlatform(Platform& platform, TraceSink sink)
      : platform_(platform), sink_(std::move(sink)) {}

  Object CreateObject(StringView prog_id, StringView server) override;
  Object GetRunningObject(StringView prog_id) override;
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

 private:
  Platform& platform_;
  TraceSink sink_;
};

}  // namespace kestrelon
