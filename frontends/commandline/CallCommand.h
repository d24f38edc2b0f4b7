// `kestrelon call`: one member on a fresh control.
#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "automation/TracingObject.h"
#include "platform/Platform.h"

namespace kestrelon::commandline {

struct CallRequest {
  std::string member;
  std::vector<std::string> arguments;  // NAME=VALUE
  TraceSink trace;                     // of the documents among them; none when empty
};

// Calls the member and prints its result to `out`. Returns the exit status; an error that the
// member raises is printed to `errors`. Throws BadCommandLine before anything is done.
int CallMember(Platform& platform, const CallRequest& request, std::ostream& out,
               std::ostream& errors);

// A message box on a terminal: its text on stderr; the answer is OK.
int32_t ShowMessageOnTerminal(const String& text, int32_t flags,
                              const std::optional<String>& title);

}  // namespace kestrelon::commandline
