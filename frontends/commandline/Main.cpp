// The program `kestrelon`: the control on a terminal.

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>
#include <memory>

#include "frontends/commandline/CallCommand.h"
#include "frontends/commandline/ExitStatus.h"
#include "frontends/commandline/MailboxOptions.h"
#include "frontends/commandline/MembersCommand.h"
#include "frontends/commandline/Session.h"
#include "platform/TracingPlatform.h"
#include "platform/linux/LinuxPlatform.h"

namespace kestrelon::commandline {
namespace {

// The desktop, with its trace when one is asked for.
class Desktop {
 public:
  Desktop(MessageBoxHandler show, const std::string& trace_path) : linux_(std::move(show)) {
    // Opened for every command, so that a wrong path is told by each.
    if (trace_path.empty()) return;
    file_.open(trace_path, std::ios::trunc);
    if (!file_) {
      throw BadCommandLine("cannot write the trace file " + trace_path +
                           "; name one in a folder that is there and may be written to");
    }
    trace_ = [this](const std::string& line) { file_ << line << std::endl; };
    tracing_ = std::make_unique<TracingPlatform>(linux_, trace_);
  }
  Platform& platform() { return tracing_ ? static_cast<Platform&>(*tracing_) : linux_; }
  const TraceSink& trace() const { return trace_; }

 private:
  LinuxPlatform linux_;
  std::ofstream file_;
  TraceSink trace_;
  std::unique_ptr<TracingPlatform> tracing_;
};

// A full disk must not look like success.
void CheckOutput() {
  if (!std::cout) throw std::runtime_error("the answer cannot be written to standard output");
}

int RunSession(const std::string& trace_path) {
  MessageLog messages;
  Desktop desktop(
      [&messages](const String& text, int32_t flags, const std::optional<String>& title) {
        return messages.Show(text, flags, title);
      },
      trace_path);
  Session session(desktop.platform(), messages, desktop.trace());
  for (std::string line; std::getline(std::cin, line);) {
    if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
    std::cout << session.Answer(line) << std::endl;
    CheckOutput();
  }
  return kSuccess;
}

constexpr const char* kHelp =
    "\"kestrelon COMMAND --help\" tells more of a command. README.md tells of the environment, "
    "such\n"
    "as KESTRELON_MAILBOX, where mails come to lie, and KESTRELON_OPENER, which shows what is "
    "made.";
constexpr const char* kCallHelp =
    "\"kestrelon members\" lists the members with their parameters; those in [ ] may be left out.\n"
    "The result is printed to stdout, message boxes to stderr, each answered with OK.\n"
    "Exit status: 0; 2 for a bad command line; 3 when the member raised an error to its caller.";
constexpr const char* kSessionHelp =
    "In:  {\"member\":\"FindFile\",\"args\":{\"path\":\"a.doc\"},\"answers\":[7]}\n"
    "Out: {\"result\":…,\"args\":{…},\"messages\":[{\"text\":…,\"flags\":…,\"title\":…}]}, and "
    "when the\n"
    "     member raised an error to its caller \"error\":{\"number\":…,\"description\":…}\n"
    "A document is given as its markup or as {\"file\":\"PATH\"}. \"answers\" are the buttons "
    "pressed\n"
    "in message boxes, in order: 1 OK, 2 Cancel, 3 Abort, 4 Retry, 5 Ignore, 6 Yes, 7 No.";

int Run(int argc, char** argv) {
  CLI::App app("The Kestrelon control on the command line", "kestrelon");
  app.require_subcommand(1);
  app.fallthrough();
  app.footer(kHelp);
  std::string trace_path;
  app.add_option("--trace", trace_path, "Write every automation call to this file, a line each");

  bool json = false;
  CLI::App* members = app.add_subcommand("members", "List the members of the control");
  members->add_flag("--json", json, "As a JSON array");

  CallRequest request;
  CLI::App* const call = app.add_subcommand("call", "Call one member on a fresh control");
  call->add_option("MEMBER", request.member, "Name of the member")->required();
  call->add_option(
      "NAME=VALUE", request.arguments,
      "Arguments; NAME=@FILE takes the value from a file, NAME=@@TEXT is the text @TEXT");
  call->footer(kCallHelp);

  CLI::App* session =
      app.add_subcommand("session", "Call many members on one control: JSON lines in and out");
  session->footer(kSessionHelp);

  MailboxRequest mailbox_request;
  CLI::App* const mailbox = AddMailboxCommand(app, mailbox_request);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kSuccess : kBadCommandLine;
  }
  if (session->parsed()) return RunSession(trace_path);
  Desktop desktop(ShowMessageOnTerminal, trace_path);
  if (members->parsed()) return PrintMembers(std::cout, json);
  if (mailbox->parsed()) {
    return RunMailboxCommand(desktop.platform(), mailbox_request, std::cout, std::cerr);
  }
  request.trace = desktop.trace();
  return CallMember(desktop.platform(), request, std::cout, std::cerr);
}

// The one last catch.
int Main(int argc, char** argv) {
  try {
    const int status = Run(argc, argv);
    std::cout.flush();
    CheckOutput();
    return status;
  } catch (const BadCommandLine& error) {
    std::fprintf(stderr, "kestrelon: %s\n", error.what());
    return kBadCommandLine;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "kestrelon: %s\n", error.what());
    return kInternalError;
  }
}

}  // namespace
}  // namespace kestrelon::commandline

int main(int argc, char** argv) { return kestrelon::commandline::Main(argc, argv); }
