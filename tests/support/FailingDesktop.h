// A desktop whose n-th automation call fails, over another one that does the work.
#pragma once

#include "platform/Platform.h"

namespace kestrelon::testing {

struct FailurePlan {
  int fail_at = 0;  // number of the call that fails, from 1
  int calls = 0;    // calls so far
  bool reached() const { return calls >= fail_at; }
  void Count();  // throws error 1234 "Injected" at the planned call
};

class FailingDesktop final : public Platform {
 public:
  FailingDesktop(Platform& platform, FailurePlan& plan) : platform_(platform), plan_(plan) {}

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
  FailurePlan& plan_;
};

// `object` with every call on it, and on what it returns, counted by the plan.
Object FailByPlan(const Object& object, FailurePlan& plan);

}  // namespace kestrelon::testing
