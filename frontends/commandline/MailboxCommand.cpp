#include "frontends/commandline/MailboxCommand.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <utility>

#include "frontends/commandline/ExitStatus.h"
#include "frontends/commandline/JsonValue.h"
#include "frontends/commandline/TerminalText.h"

namespace kestrelon::commandline {
namespace {

using Json = nlohmann::ordered_json;

// Outlook's "no date": 4501-01-01.
constexpr Date kNoDate{949998.0};
constexpr size_t kManyFiles = 10;

// JSON may reach a terminal too: the control characters that it leaves as they are, DEL and those
// of U+0080 to U+009F, are escaped as well.
void PrintJson(std::ostream& out, const Json& json) {
  static constexpr char kDigits[] = "0123456789abcdef";
  const std::string text = json.dump(2);
  for (size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const auto next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0;
    if (byte == 0xC2 && next >= 0x80 && next < 0xA0) {
      out << "\\u00" << kDigits[next >> 4] << kDigits[next & 15];
      ++i;
    } else if (byte == 0x7F) {
      out << "\\u007f";
    } else {
      out << text[i];
    }
  }
  out << "\n" << std::flush;
}

Json ToJson(const ItemEntry& item) {
  return {{"id", ToUtf8(item.id)}, {"kind", item.kind}, {"name", ToUtf8(item.name)}};
}

Json ToJson(const std::vector<ItemEntry>& items) {
  Json array = Json::array();
  for (const ItemEntry& item : items) array.push_back(ToJson(item));
  return array;
}

void PrintItems(std::ostream& out, const std::vector<ItemEntry>& items) {
  TextTable table;
  for (const ItemEntry& item : items) {
    table.AddRow({item.kind, OneLine(item.name), OneLine(item.id)});
  }
  table.Print(out);
}

bool IsEmpty(const Value& value) {
  if (value.IsString()) return value.AsString().empty();
  if (value.IsDate()) return value.AsDate() == kNoDate;
  return value.IsEmpty() || value.IsNull() || value.IsObject();
}

struct Property {
  String name;
  Value value;
};

std::vector<Property> PropertiesOf(const Object& item, StringView collection) {
  std::vector<Property> properties;
  ForEach(item.GetChild(collection), [&](const Object& property) {
    properties.push_back({property.Get(u"Name").ToText(), property.Get(u"Value")});
  });
  return properties;
}

Json ToJson(const std::vector<Property>& properties) {
  Json object = Json::object();
  for (const Property& property : properties) {
    object[ToUtf8(property.name)] = kestrelon::commandline::ToJson(property.value);
  }
  return object;
}

void AddRows(TextTable& table, const std::vector<Property>& properties) {
  for (const Property& property : properties) {
    // The markup of a mail says what its text says, unreadably.
    if (EqualIgnoringCase(property.name, u"HTMLBody")) continue;
    std::vector<std::string> lines = Lines(property.value.ToText());
    if (lines.empty()) lines.emplace_back();
    std::string name = OneLine(property.name);
    for (std::string& line : lines) table.AddRow({std::exchange(name, ""), std::move(line)});
  }
}

std::string Count(size_t number, const std::string& what) {
  return std::to_string(number) + " " + what + (number == 1 ? "" : "s");
}

// With the file, where the description does not say it.
std::string FailureText(const String& path, const AutomationError& error) {
  const bool has_path = error.description().find(path) != String::npos;
  return has_path ? OneLine(error.description())
                  : OneLine(path) + ": " + OneLine(error.description());
}

// "[3/20] FILE" on a terminal, in the place of the one before.
class Progress {
 public:
  Progress(std::ostream& out, size_t total)
      : out_(out), total_(total), is_shown_(total >= kManyFiles && isatty(STDERR_FILENO) != 0) {}
  ~Progress() { Clear(); }
  void Show(const std::string& file) {
    ++done_;
    if (!is_shown_) return;
    Clear();
    out_ << "[" << done_ << "/" << total_ << "] " << OneLine(FromUtf8(file)) << std::flush;
  }
  void Clear() {
    if (is_shown_) out_ << "\r\x1b[K" << std::flush;
  }

 private:
  std::ostream& out_;
  size_t total_;
  bool is_shown_;
  size_t done_ = 0;
};

}  // namespace

int MailboxCommand::ListFolders() {
  Json array = Json::array();
  TextTable table;
  table.AddRow({"FOLDER", "KIND", "ITEMS", "ID"});
  for (const FolderEntry& entry : view_.Folders()) {
    const int32_t count = entry.folder.GetChild(u"Items").Get(u"Count").ToLong();
    const String id = entry.folder.Get(u"EntryID").ToText();
    const std::string kind = KindOfFolder(entry.folder);
    array.push_back({{"id", ToUtf8(id)},
                     {"name", ToUtf8(entry.name)},
                     {"path", ToUtf8(entry.path)},
                     {"kind", kind},
                     {"items", count}});
    table.AddRow({std::string(2 * entry.depth, ' ') + OneLine(entry.name), kind,
                  std::to_string(count), OneLine(id)});
  }
  if (form_ == OutputForm::kJson) {
    PrintJson(out_, array);
  } else {
    table.Print(out_);
  }
  return kSuccess;
}

int MailboxCommand::ListItems(const std::string& folder) {
  std::vector<ItemEntry> items;
  ForEach(view_.FindFolder(FromUtf8(folder)).GetChild(u"Items"),
          [&](const Object& item) { items.push_back(Describe(item)); });
  if (form_ == OutputForm::kJson) {
    PrintJson(out_, ToJson(items));
  } else {
    PrintItems(out_, items);
  }
  return kSuccess;
}

int MailboxCommand::ShowItem(const std::string& id) {
  const Object item = view_.FindItem(FromUtf8(id));
  const ItemEntry entry = Describe(item);
  const String folder = PathOf(item.GetChild(u"Parent"));
  std::vector<Property> properties = PropertiesOf(item, u"ItemProperties");
  std::erase_if(properties, [](const Property& property) { return IsEmpty(property.value); });
  const std::vector<Property> user_properties = PropertiesOf(item, u"UserProperties");
  if (form_ == OutputForm::kJson) {
    PrintJson(out_, {{"id", ToUtf8(entry.id)},
                     {"kind", entry.kind},
                     {"name", ToUtf8(entry.name)},
                     {"folder", ToUtf8(folder)},
                     {"properties", ToJson(properties)},
                     {"userProperties", ToJson(user_properties)}});
    return kSuccess;
  }
  out_ << entry.kind << " in " << OneLine(folder) << ", id " << OneLine(entry.id) << "\n";
  TextTable table;
  AddRows(table, properties);
  if (!user_properties.empty()) table.AddRow({"user properties:", ""});
  AddRows(table, user_properties);
  table.Print(out_);
  return kSuccess;
}

int MailboxCommand::SelectItems(const std::vector<std::string>& ids) {
  std::vector<Object> items;
  std::vector<ItemEntry> entries;
  for (const std::string& id : ids) {
    Object item = view_.FindItem(FromUtf8(id));
    ItemEntry entry = Describe(item);
    if (std::any_of(entries.begin(), entries.end(),
                    [&](const ItemEntry& other) { return other.id == entry.id; })) {
      continue;
    }
    items.push_back(std::move(item));
    entries.push_back(std::move(entry));
  }
  const Object explorer = view_.Explorer();
  explorer.Call(u"ClearSelection");
  for (const Object& item : items) explorer.Call(u"AddToSelection", item);
  if (form_ == OutputForm::kJson) {
    PrintJson(out_, {{"selected", ToJson(entries)}, {"open", view_.WasOpen()}});
    return kSuccess;
  }
  out_ << (entries.empty() ? "Nothing is selected" : Count(entries.size(), "item") + " selected")
       << "\n";
  PrintItems(out_, entries);
  if (!view_.WasOpen()) {
    out_ << "Outlook is not open: a page that asks for the selection is told that Outlook is not "
            "running. Open it with \"kestrelon mailbox open\".\n";
  }
  return kSuccess;
}

int MailboxCommand::SetOpen(bool is_open) {
  const bool changes = view_.WasOpen() != is_open;
  if (changes) view_.Explorer().Call(is_open ? u"Display" : u"Close");
  if (form_ == OutputForm::kJson) {
    PrintJson(out_, {{"open", is_open}, {"changed", changes}});
  } else if (!changes) {
    out_ << "Outlook was " << (is_open ? "open" : "closed") << " already\n";
  } else {
    out_ << (is_open ? "Outlook is open: pages see what \"kestrelon mailbox select\" selects\n"
                     : "Outlook is closed: pages that ask for the selection get none\n");
  }
  return kSuccess;
}

int MailboxCommand::Open() { return SetOpen(true); }

int MailboxCommand::Close() { return SetOpen(false); }

int MailboxCommand::ImportFiles(const std::vector<std::string>& files) {
  Json array = Json::array();
  int status = kSuccess;
  Progress progress(errors_, files.size());
  for (const std::string& file : files) {
    progress.Show(file);
    std::vector<ItemEntry> items;
    const String path = FromUtf8(std::filesystem::absolute(file).string());
    const auto failure = IgnoreFailures([&] {
      ForEach(view_.name_space().CallChild(u"ImportFile", path),
              [&](const Object& item) { items.push_back(Describe(item)); });
    });
    progress.Clear();
    array.push_back({{"file", ToUtf8(FromUtf8(file))}, {"items", ToJson(items)}});
    if (failure) {
      status = kFailed;
      array.back()["error"] = ToUtf8(failure->description());
      errors_ << "kestrelon: " << FailureText(path, *failure) << std::endl;
    } else if (form_ == OutputForm::kText) {
      out_ << OneLine(FromUtf8(file)) << ": " << Count(items.size(), "item") << "\n";
      PrintItems(out_, items);
      out_ << std::flush;
    }
  }
  if (form_ == OutputForm::kJson) PrintJson(out_, array);
  return status;
}

int MailboxCommand::MakeFolder(const std::string& name, const std::string& kind) {
  constexpr int32_t kContactsFolder = 10;  // OlDefaultFolders
  constexpr int32_t kTasksFolder = 13;
  const int32_t type = kind == "contacts" ? kContactsFolder : kTasksFolder;
  const Object parent = view_.name_space().CallChild(u"GetDefaultFolder", type);
  const Object folders = parent.GetChild(u"Folders");
  ForEach(folders, [&](const Object& folder) {
    if (!EqualIgnoringCase(folder.Get(u"Name").ToText(), FromUtf8(name))) return;
    throw MailboxFailure("there is a folder \"" + OneLine(PathOf(folder)) +
                         "\" already; choose another name");
  });
  const Object folder = folders.CallChild(u"Add", FromUtf8(name), type);
  const String path = PathOf(folder);
  const String id = folder.Get(u"EntryID").ToText();
  if (form_ == OutputForm::kJson) {
    PrintJson(out_, {{"id", ToUtf8(id)},
                     {"name", ToUtf8(folder.Get(u"Name").ToText())},
                     {"path", ToUtf8(path)},
                     {"kind", KindOfFolder(folder)},
                     {"items", 0}});
  } else {
    out_ << "Made " << OneLine(path) << " for " << KindOfFolder(folder) << ", id " << OneLine(id)
         << "\n";
  }
  return kSuccess;
}

}  // namespace kestrelon::commandline
