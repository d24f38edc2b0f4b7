// A desktop whose n-th automation call fails, over another one that does the work.
#pragma once

#include "platform/ForwardingPlatform.h"

namespace kestrelon::testing {

struct FailurePlan {
  int fail_at = 0;  // number of the call that fails, from 1
  int calls = 0;    // calls so far
  bool reached() const { return calls >= fail_at; }
  void Count();  // throws error 1234 "Injected" at the planned call
};

class FailingDesktop final : public ForwardingPlatform {
 public:
  FailingDesktop(Platform& platform, FailurePlan& plan)
      : ForwardingPlatform(platform), plan_(plan) {}

  Object CreateObject(StringView prog_id, StringView server) override;
  Object GetRunningObject(StringView prog_id) override;

 private:
  FailurePlan& plan_;
};

// `object` with every call on it, and on what it returns, counted by the plan.
Object FailByPlan(const Object& object, FailurePlan& plan);

}  // namespace kestrelon::testing
