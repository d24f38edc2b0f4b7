// `kestrelon mailbox`: what a user without Outlook's window has for looking at the mailbox, and for
// selecting what the selection members see.
//
// Like the members, it reaches Outlook only by the platform's automation object. Each action prints
// its result to `out`, as text for a terminal or as JSON, and returns the exit status. What cannot
// be done is thrown as MailboxFailure, or as the AutomationError that Outlook raised.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "frontends/commandline/MailboxView.h"

namespace kestrelon::commandline {

enum class OutputForm { kText, kJson };

class MailboxCommand {
 public:
  // All must outlive the command.
  MailboxCommand(Platform& platform, OutputForm form, std::ostream& out, std::ostream& errors)
      : view_(platform), form_(form), out_(out), errors_(errors) {}

  // All folders as a tree, or the items of one.
  int ListFolders();
  int ListItems(const std::string& folder);
  int ShowItem(const std::string& id);
  // In the place of what was selected. Nothing changes when one of the ids is wrong.
  int SelectItems(const std::vector<std::string>& ids);
  int Open();
  int Close();
  // Goes on after a file that cannot be imported, which is told on `errors`.
  int ImportFiles(const std::vector<std::string>& files);
  // Below the default folder of the kind, "contacts" or "tasks".
  int MakeFolder(const std::string& name, const std::string& kind);

 private:
  int SetOpen(bool is_open);

  MailboxView view_;
  OutputForm form_;
  std::ostream& out_;
  std::ostream& errors_;
};

}  // namespace kestrelon::commandline
