// Shows a file or a link to the user in the program that the desktop has for it.
//
// The program is $KESTRELON_OPENER (a path, or a name looked up in PATH); without that, xdg-open
// when there is a display ($DISPLAY or $WAYLAND_DISPLAY). It gets the file or link as its one
// argument, no shell in between, and runs on its own: in a session of its own, without this
// process's input and output, outliving it, never waited for.
#pragma once

#include <string>

namespace kestrelon::desktop {

enum class OpenOutcome {
  kStarted,
  kNoOpener,     // nothing to open it with; nothing was done
  kCannotStart,  // the program is not there or may not be run
};

// True when there is a program to open with. Lets a caller spare itself what only a viewer needs.
bool HasOpener();

// `target` is an absolute path or a link, UTF-8.
OpenOutcome OpenForUser(const std::string& target);

// Runs a program of the user's, a path or a name looked up in PATH, without arguments and on its
// own as above, and waits for its end, but no longer than `milliseconds`. False when it cannot be
// started.
bool RunForUser(const std::string& name, int milliseconds);

}  // namespace kestrelon::desktop
