#include "frontends/commandline/MailboxOptions.h"

#include "frontends/commandline/ExitStatus.h"
#include "frontends/commandline/TerminalText.h"

namespace kestrelon::commandline {
namespace {

constexpr const char* kCommonHelp =
    "The mailbox is the folder $KESTRELON_MAILBOX, or kestrelon/mailbox in the user's data "
    "folder.\n"
    "Exit status: 0; 1 for what could not be done, told on stderr; 2 for a bad command line.";

struct Action {
  const char* name;
  const char* description;
  const char* details;
  std::function<int(MailboxCommand&)> run;
};

CLI::App* AddAction(CLI::App& mailbox, MailboxRequest& request, const Action& action) {
  CLI::App* const command = mailbox.add_subcommand(action.name, action.description);
  command->add_flag("--json", request.json, "Print JSON, for programs");
  command->footer(action.details + std::string("\n\n") + kCommonHelp);
  command->final_callback([&request, run = action.run] { request.action = run; });
  return command;
}

void AddLookingActions(CLI::App& mailbox, MailboxRequest& request) {
  CLI::App* const list = AddAction(
      mailbox, request,
      {"list", "List the folders, or the items of one",
       "Folders: a tree with kind, number of items and id. JSON: an array of {id, name, path, "
       "kind,\n"
       "items}, parents first.\n"
       "Items: kind, name or subject, and id, in the folder's order. JSON: an array of {id, kind,\n"
       "name}. Kinds: contact, list (a distribution list), appointment, task, mail.",
       [&request](MailboxCommand& command) {
         return request.folder.empty() ? command.ListFolders() : command.ListItems(request.folder);
       }});
  list->add_option("FOLDER", request.folder,
                   "A path (\"Contacts/Clients\", in any case), a name that only one folder has, "
                   "or an id");
  CLI::App* const show = AddAction(
      mailbox, request,
      {"show", "Show one item",
       "Shows the properties that are not empty, under their names in Outlook's object model, and\n"
       "the user properties. JSON: {id, kind, name, folder, properties, userProperties}.",
       [&request](MailboxCommand& command) { return command.ShowItem(request.id); }});
  show->add_option("ID", request.id, "Id of the item, as \"list FOLDER\" shows it")->required();
}

void AddSelectingActions(CLI::App& mailbox, MailboxRequest& request) {
  CLI::App* const select = AddAction(
      mailbox, request,
      {"select", "Select items, as in Outlook's window",
       "What is selected takes the place of what was; without an ID, nothing is. Pages see it by\n"
       "GetOutlookSelection and GetOutlookSelectionString while Outlook is open (see \"open\").\n"
       "When an id is wrong, nothing changes. JSON: {selected, open}.",
       [&request](MailboxCommand& command) { return command.SelectItems(request.ids); }});
  select->add_option("ID", request.ids, "Ids of items, in the order in which pages get them");
  AddAction(
      mailbox, request,
      {"open", "Let Outlook count as open",
       "Until \"close\", every program that uses this mailbox finds Outlook running. Members\n"
       "that look for a running Outlook, such as GetOutlookSelection, need that. JSON: {open,\n"
       "changed}.",
       [](MailboxCommand& command) { return command.Open(); }});
  AddAction(mailbox, request,
            {"close", "Let Outlook count as closed", "Takes \"open\" back. JSON: {open, changed}.",
             [](MailboxCommand& command) { return command.Close(); }});
}

void AddFillingActions(CLI::App& mailbox, MailboxRequest& request) {
  CLI::App* const import = AddAction(
      mailbox, request,
      {"import", "Take the items of files into the mailbox",
       "Contacts (.vcf), appointments and tasks (.ics), mails (.eml); each goes into the default\n"
       "folder of its kind, and the files stay as they are. A file that cannot be read is told on\n"
       "stderr, the others come in, and the exit status is 1. JSON: an array of {file, items, "
       "error}.",
       [&request](MailboxCommand& command) { return command.ImportFiles(request.files); }});
  import->add_option("FILE", request.files, "Files, each with one item or many")->required();
  CLI::App* const new_folder =
      AddAction(mailbox, request,
                {"new-folder", "Make a folder below Contacts or Tasks",
                 "JSON: {id, name, path, kind, items}.", [&request](MailboxCommand& command) {
                   return command.MakeFolder(request.name, request.kind);
                 }});
  new_folder->add_option("NAME", request.name, "Its name")->required();
  new_folder->add_option("--kind", request.kind, "What it is for: contacts or tasks")
      ->required()
      ->check(CLI::IsMember({"contacts", "tasks"}));
}

}  // namespace

CLI::App* AddMailboxCommand(CLI::App& app, MailboxRequest& request) {
  CLI::App* const mailbox =
      app.add_subcommand("mailbox", "Look at the mailbox and select items in it");
  mailbox->require_subcommand(1);
  mailbox->footer(kCommonHelp);
  AddLookingActions(*mailbox, request);
  AddSelectingActions(*mailbox, request);
  AddFillingActions(*mailbox, request);
  return mailbox;
}

int RunMailboxCommand(Platform& platform, const MailboxRequest& request, std::ostream& out,
                      std::ostream& errors) {
  try {
    MailboxCommand command(platform, request.form(), out, errors);
    return request.action(command);
  } catch (const MailboxFailure& failure) {
    errors << "kestrelon: " << failure.what() << std::endl;
  } catch (const AutomationError& error) {
    errors << "kestrelon: " << OneLine(error.description()) << std::endl;
  }
  return kFailed;
}

}  // namespace kestrelon::commandline
