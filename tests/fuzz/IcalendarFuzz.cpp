// The reader of calendar files: any bytes are read, and what is put into an item is read back from
// its file, which stays an item of its kind.

#include <cstdint>

#include "automation/AutomationError.h"
#include "desktop/outlook/formats/CalendarDocument.h"
#include "tests/fuzz/Require.h"

namespace {

using namespace kestrelon;
using namespace kestrelon::desktop;

void ReadAll(const ItemDocument& item) {
  for (const StringView name : item.PropertyNames()) {
    const Value value = item.Get(LowerCase(name));
    if (value.IsDate()) FormatDate(value.AsDate());
  }
  item.UserFields();
}

void PutAll(ItemDocument& item) {
  for (const StringView name : {u"subject", u"body", u"categories"}) item.Put(name, u"a, b");
  item.Put(u"importance", 2);
  item.Put(u"sensitivity", 3);
  if (item.item_class() == ItemClass::kTask) {
    item.Put(u"complete", true);
    item.Put(u"startdate", u"2026-11-20");
    item.Put(u"duedate", u"2026-11-21");
  } else {
    IgnoreFailures([&] { item.Put(u"start", u"2026-11-20 10:00:00"); },
                   [&] { item.Put(u"alldayevent", true); });
  }
  item.PutUserField({u"guid", 1, u"x:\r\ny"});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string content(reinterpret_cast<const char*>(data), size);
  for (const std::string& one : SplitCalendar(content)) Require(ReadCalendarItem(one) != nullptr);
  const auto item = ReadCalendarItem(content);
  const auto item_class = item ? std::optional(item->item_class()) : std::nullopt;
  Require(ClassOfCalendarObject(content) == item_class);
  if (item == nullptr) return 0;
  ReadAll(*item);
  Require(item->content() == content);
  PutAll(*item);
  const auto again = ReadCalendarItem(item->content());
  Require(again != nullptr && again->item_class() == item->item_class());
  ReadAll(*again);
  Require(again->Get(u"subject").AsString() == u"a, b");
  Require(again->Get(u"importance").AsInteger() == 2);
  Require(again->FindUserField(u"GUID")->value == u"x:\r\ny");
  if (again->item_class() == ItemClass::kTask) Require(again->Get(u"complete").AsBoolean());
  again->RemoveUserField(u"guid");
  Require(!again->FindUserField(u"guid"));
  return 0;
}
