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
  // The result, as text, of a call that did all of its work; also of one that got over
  // a failure.
  const char16_t* success;
  // What any other failure gives; "…" stands for any rest.
  std::vector<StringView> failures;
  // So many message boxes at most after such a failure; none at all for 0, and one at least
  // otherwise.
  size_t most_messages;
  References references;
  // Answers of the desktop, and what earlier members left behind.
  std::function<void(ScriptedDesktop& desktop, ObjectState& state)> prepare = nullptr;
  // The failure may be the page's instead of a result.
  bool may_raise = false;
  // So many of its calls can fail and the member still does all of its work.
  int forgiven = 0;
};

const std::vector<OutlookCase>& OutlookCases();

}  // namespace kestrelon::testing
