// The Outlook members, each of whose automation calls is made to fail in turn on the scripted
// desktop. A member that is built needs a row here.
#pragma once

#include <functional>
#include <vector>

#include "Control/ObjectState.h"
#include "tests/support/ScriptedDesktop.h"

namespace kestrelon::testing {

// What becomes of the Outlook references in the object state, the bound contact folder included.
enum class References {
  kReleased,              // whatever happens
  kReleasedAfterFailure,  // and kept by a call that did all of its work
  kKept,                  // the bound contact folder at least
};

struct OutlookCase {
  const char16_t* member;
  std::vector<Value> arguments;
  // The result, as text, of a call that did all of its work; a failure that a member gets over
  // gives it too.
  const char16_t* success;
  // What else a call may return after a failure; "…" stands for any rest.
  std::vector<StringView> failures;
  // So many message boxes at most after a failure that shows in the result; none at all for 0, and
  // one at least otherwise.
  size_t most_messages;
  References references;
  // Answers of the desktop, and what earlier members left behind.
  std::function<void(ScriptedDesktop& desktop, ObjectState& state)> prepare = nullptr;
  // The failure may be the page's instead of a result.
  bool may_raise = false;
};

const std::vector<OutlookCase>& OutlookCases();

}  // namespace kestrelon::testing
