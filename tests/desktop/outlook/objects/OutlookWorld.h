// The world of these tests: a mailbox in a private folder, and other programs that work on it.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "desktop/outlook/objects/DefaultFolders.h"
#include "desktop/outlook/objects/OutlookApplication.h"
#include "desktop/storage/AtomicFile.h"
#include "desktop/storage/Paths.h"
#include "tests/desktop/converter/ConverterWorld.h"
#include "tests/support/Failures.h"

namespace kestrelon::desktop {

// Outlook's numbers.
constexpr int32_t kOutOfBounds = -2147352567;
constexpr int32_t kChanged = -2147221239;
constexpr int32_t kDeleted = -2147221238;
constexpr int32_t kNotFound = -2147221233;

class OutlookWorld : public testing::Test {
 protected:
  Object Folder(int32_t number) const { return session_.CallChild(u"GetDefaultFolder", number); }
  Object Items(int32_t number) const { return Folder(number).GetChild(u"Items"); }
  Object FromId(const String& entry_id) const {
    return session_.CallChild(u"GetItemFromID", entry_id);
  }
  // A saved item with one property.
  String Save(int32_t folder, StringView property, const Value& value) const {
    const Object item = Items(folder).CallChild(u"Add");
    item.Put(property, value);
    item.Call(u"save");
    return item.Get(u"EntryID").ToText();
  }
  std::filesystem::path Path(const std::string& name) const { return folder_.path() / name; }
  std::vector<std::string> FilesIn(const std::string& folder) const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(Path("box/" + folder))) {
      const std::string name = entry.path().filename();
      if (!name.starts_with('.')) names.push_back(name);
    }
    return names;
  }
  // Does something in another process, which ends then.
  template <typename Action>
  void Elsewhere(const Action& action) const {
    const pid_t child = fork();
    if (child == 0) _exit(NumberOf(action) == 0 ? 0 : 1);
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
  }

  PrivateFolder folder_{"kestrelon-outlook-test-"};
  ChangedEnvironment mailbox_{"KESTRELON_MAILBOX", (folder_.path() / "box").string()};
  Object outlook_ = CreateOutlookApplication();
  Object session_ = outlook_.CallChild(u"GetNamespace", u"MAPI");
};

// The texts of a property of all elements, each followed by "|".
inline String EachOf(const Object& collection, StringView property) {
  String texts;
  const auto walk = collection.Enumerate();
  while (const auto one = walk->Next()) texts += one->ToObject().Get(property).ToText() + u"|";
  return texts;
}

}  // namespace kestrelon::desktop
