// The command line of `kestrelon mailbox`.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>

#include "frontends/commandline/MailboxCommand.h"

namespace kestrelon::commandline {

// What the user asked for; filled in by the parser.
struct MailboxRequest {
  OutputForm form() const { return json ? OutputForm::kJson : OutputForm::kText; }

  bool json = false;
  std::string folder;
  std::string id;
  std::vector<std::string> ids;
  std::vector<std::string> files;
  std::string name;
  std::string kind;
  std::function<int(MailboxCommand&)> action;
};

// Adds the command with its actions. `request` must outlive `app`.
CLI::App* AddMailboxCommand(CLI::App& app, MailboxRequest& request);

// Does what was asked for and returns the exit status; a failure is told on `errors`.
int RunMailboxCommand(Platform& platform, const MailboxRequest& request, std::ostream& out,
                      std::ostream& errors);

}  // namespace kestrelon::commandline
