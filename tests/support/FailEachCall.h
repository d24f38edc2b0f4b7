// Every automation call of a member failing in turn, on a scripted desktop.
#pragma once

#include <gtest/gtest.h>

#include "Control/ObjectState.h"
#include "tests/support/ScriptedDesktop.h"

namespace kestrelon::testing {

// Runs `run(context, desktop)` once for each call that fails, `desktop.failed_line`, on a desktop
// that `script(desktop)` has prepared, and at last once without a failure: there the line is "", as
// it is for lines of the log that cannot fail.
// How many calls failed.
template <typename Script, typename Run>
int FailEachCall(const Script& script, const Run& run) {
  int failures = 0;
  for (int n = 1;; ++n) {
    ScriptedDesktop desktop;
    script(desktop);
    desktop.fail_at = n;
    ControlContext context{desktop};
    EXPECT_NO_THROW(run(context, desktop)) << desktop.failed_line;
    if (static_cast<int>(desktop.log.size()) < n) return failures;
    failures += desktop.failed_line.empty() ? 0 : 1;
  }
}

}  // namespace kestrelon::testing
