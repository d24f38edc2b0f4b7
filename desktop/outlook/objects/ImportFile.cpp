#include "desktop/outlook/objects/ImportFile.h"

#include <map>

#include "desktop/outlook/formats/CalendarDocument.h"
#include "desktop/outlook/formats/ContactDocument.h"
#include "desktop/outlook/mail/MessageDocument.h"
#include "desktop/outlook/objects/DefaultFolders.h"
#include "desktop/storage/AtomicFile.h"
#include "desktop/storage/Paths.h"

namespace kestrelon::desktop {
namespace {

constexpr size_t kLargestFile = size_t{256} << 20;

struct NewFile {
  int32_t default_folder;
  ItemClass item_class;
  std::string uid;
  std::string content;
};

std::vector<std::string> Alone(std::string_view content) { return {std::string(content)}; }

// Any bytes can be read as a message; one begins with a header field or a line of a mail spool.
std::unique_ptr<ItemDocument> ReadMail(std::string content) {
  const size_t name_end = content.find_first_of(": \r\n");
  const bool has_header = name_end != std::string::npos && name_end > 0 &&
                          (content[name_end] == ':' || content.starts_with("From "));
  return has_header ? ReadMessage(std::move(content)) : nullptr;
}

struct Format {
  StringView extension;
  std::vector<std::string> (*split)(std::string_view content);
  std::unique_ptr<ItemDocument> (*read)(std::string content);
  StringView nothing_in_it;
};

constexpr Format kFormats[] = {
    {u".vcf", &SplitCards, &ReadContact, u"no vCard"},
    {u".ics", &SplitCalendar, &ReadCalendarItem, u"no event and no task"},
    {u".eml", &Alone, &ReadMail, u"no mail"}};

const Format* FormatOf(const std::filesystem::path& path) {
  const String extension = LowerCase(FromUtf8(path.extension().string()));
  for (const Format& format : kFormats) {
    if (format.extension == extension) return &format;
  }
  return nullptr;
}

int32_t DefaultFolderOf(ItemClass item_class) {
  switch (item_class) {
    case ItemClass::kAppointment:
      return kCalendar;
    case ItemClass::kTask:
      return kTasks;
    case ItemClass::kMail:
      return kInbox;
    case ItemClass::kContact:
    case ItemClass::kDistributionList:
      break;
  }
  return kContacts;
}

AutomationError CannotImport(StringView path, StringView reason) {
  return AutomationError(kTypeMismatch,
                         u"Cannot import \"" + String(path) + u"\": " + String(reason) +
                             u". Nothing is imported. Export the file again, as vCard (.vcf), "
                             u"iCalendar (.ics) or mail (.eml).");
}

std::string ReadSource(const std::filesystem::path& source, StringView path) {
  try {
    return ReadWholeFile(source, kLargestFile);
  } catch (const AutomationError& error) {
    const String reason =
        error.number() == kOutOfMemory ? u"It is larger than 256 MiB" : error.description();
    throw AutomationError(error.number(), u"Cannot import \"" + String(path) + u"\": " + reason +
                                              u". Check the path and the file name.");
  }
}

// The files of a failed import would be there twice after the next try.
void Undo(std::vector<FoundItem>& items) {
  for (FoundItem& item : items) {
    IgnoreFailures([&] { item.folder->files()->Remove(item.file); });
  }
}

std::vector<FoundItem> Store(std::vector<NewFile> files, const std::string& extension) {
  std::map<int32_t, MailFolderPointer> folders;
  std::vector<FoundItem> items;
  try {
    for (NewFile& file : files) {
      MailFolderPointer& folder = folders[file.default_folder];
      if (folder == nullptr) folder = DefaultFolder(OwnStore(), file.default_folder);
      items.push_back({folder, folder->files()->Create(file.uid, extension, file.item_class,
                                                       std::move(file.content))});
    }
  } catch (const AutomationError&) {
    Undo(items);
    throw;
  }
  return items;
}

}  // namespace

std::vector<FoundItem> ImportItems(StringView path) {
  const std::filesystem::path source = PathFromText(path);
  const Format* format = FormatOf(source);
  if (format == nullptr) throw CannotImport(path, u"the name ends in none of .vcf, .ics and .eml");
  const std::string content = ReadSource(source, path);
  std::vector<NewFile> files;
  for (std::string& part : format->split(content)) {
    const bool is_too_large =
        format->read != &ReadMail && part.size() > static_cast<size_t>(kLargestCardOrEvent);
    const auto document = is_too_large ? nullptr : format->read(part);
    if (document == nullptr) {
      throw CannotImport(
          path, u"part " + FromUtf8(std::to_string(files.size() + 1)) + u" of it cannot be read");
    }
    const ItemClass item_class = document->item_class();
    files.push_back({DefaultFolderOf(item_class), item_class, document->Uid(), std::move(part)});
  }
  if (files.empty()) throw CannotImport(path, u"it holds " + String(format->nothing_in_it));
  return Store(std::move(files), ToUtf8(format->extension));
}

}  // namespace kestrelon::desktop
