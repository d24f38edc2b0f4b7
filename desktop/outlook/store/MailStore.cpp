#include <unordered_map>

#include "desktop/outlook/store/EntryIds.h"
#include "desktop/outlook/store/FolderNames.h"
#include "desktop/outlook/store/MailFolder.h"
#include "desktop/outlook/store/Mailbox.h"
#include "desktop/outlook/store/Subfolders.h"

namespace kestrelon::desktop {
namespace {

constexpr std::string_view kOwnId = "kestrelon";

MailStorePointer StoreAt(const std::filesystem::path& path, const String& user) {
  static std::unordered_map<std::string, std::weak_ptr<const MailStore>> stores;
  std::weak_ptr<const MailStore>& known = stores[path.native()];
  MailStorePointer store = known.lock();
  if (!store) known = store = std::make_shared<const MailStore>(MailStore{path, user});
  return store;
}

}  // namespace

String MailStore::StoreId() const {
  return FromUtf8(ToHex(std::string(kOwnId) + (user.empty() ? "" : ":" + ToUtf8(user))));
}

MailStorePointer OwnStore() { return StoreAt(MailboxFolder(), u""); }

MailStorePointer SharedStore(StringView user) {
  const std::filesystem::path shared = MailboxFolder() / kSharedFolder;
  std::optional<std::string> found;
  for (const std::string& file_name : FolderNamesIn(shared)) {
    const String name = NameFromFileName(file_name);
    if (name == user || (!found && EqualIgnoringCase(name, user))) found = file_name;
  }
  return found ? StoreAt(shared / *found, NameFromFileName(*found)) : nullptr;
}

MailStorePointer StoreById(StringView store_id) {
  const std::optional<std::string> text = FromHex(store_id);
  if (!text || !text->starts_with(kOwnId)) return nullptr;
  const std::string_view rest = std::string_view(*text).substr(kOwnId.size());
  if (rest.empty()) return OwnStore();
  return rest.front() == ':' ? SharedStore(FromUtf8(rest.substr(1))) : nullptr;
}

}  // namespace kestrelon::desktop
