// The configuration file: the telephony lines and the dialers of this desktop, as the user has
// written them down (docs/telephony.md). $KESTRELON_CONFIG, else kestrelon/config.json in
// $XDG_CONFIG_HOME (~/.config). A missing file has no lines and no dialers.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "automation/Text.h"

namespace kestrelon::desktop {

// A program and its arguments, UTF-8; empty when there is none.
using CommandWords = std::vector<std::string>;

struct DialerSettings {
  String prog_id;
  CommandWords call;  // never empty
  CommandWords hangup;
  String version;
};

struct Configuration {
  std::filesystem::path file;
  std::vector<String> lines;
  std::vector<DialerSettings> dialers;
};

// Reads the file anew. An AutomationError says what is wrong with it: file, line, reason and what
// to do.
Configuration ReadConfiguration();

}  // namespace kestrelon::desktop
