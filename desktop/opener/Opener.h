// Shows a file or a link to the user in the program that the desktop has for it.
//
// The program is $KESTRELON_OPENER (a path, or a name looked up in PATH); without that, xdg-open
// when there is a display ($DISPLAY or $WAYLAND_DISPLAY). It gets the file or link as its one
// argument, no shell in between, and runs on its own: in a session of its own, without this
// process's input and output, outliving it, never waited for.
#pragma once

#include <string>
#include <vector>

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

// Whether the opener has a program for the type of this file (or folder), by its name and, where
// that says nothing, its content; or for links with this scheme ("tel"). A chosen $KESTRELON_OPENER
// is for everything; otherwise the desktop's own lists tell. Starts nothing and waits for nothing.
// False without an opener.
bool HasProgramForFile(const std::string& path);
bool HasProgramForLinks(const std::string& scheme);

// Runs a program of the user's, a path or a name looked up in PATH, with these arguments and on its
// own as above, and waits for its end, but no longer than `milliseconds`. False when it cannot be
// started.
bool RunForUser(const std::string& name, const std::vector<std::string>& arguments,
                int milliseconds);

}  // namespace kestrelon::desktop
