#include "desktop/outlook/formats/CalendarDocument.h"

#include <ctime>
#include <unordered_map>

#include "automation/AutomationError.h"
#include "desktop/outlook/formats/CalendarObject.h"
#include "desktop/outlook/formats/CalendarProperties.h"
#include "desktop/outlook/formats/NewUid.h"
#include "desktop/outlook/formats/UserFieldLines.h"

namespace kestrelon::desktop {
namespace {

constexpr int32_t kReadOnlyProperty = 440;

// The properties of one kind of item by name.
struct PropertyTable {
  explicit PropertyTable(const std::vector<CalendarProperty>& properties) {
    for (const CalendarProperty& property : properties) {
      names.push_back(property.name);
      by_name.emplace(LowerCase(property.name), &property);
    }
  }

  std::vector<StringView> names;
  std::unordered_map<String, const CalendarProperty*> by_name;
};

class CalendarDocument final : public ItemDocument {
 public:
  explicit CalendarDocument(CalendarObject object) : object_(std::move(object)) {}

  ItemClass item_class() const override {
    return object_.is_task() ? ItemClass::kTask : ItemClass::kAppointment;
  }
  const std::string& content() const override { return object_.lines().text(); }
  std::string Uid() const override { return UnescapeText(object_.Raw("UID")); }

  bool Has(StringView property) const override {
    return Table().by_name.count(String(property)) > 0;
  }
  const std::vector<StringView>& PropertyNames() const override { return Table().names; }
  Value Get(StringView property) const override { return Required(property).get(object_); }

  void Put(StringView property, const Value& value) override {
    const CalendarProperty& required = Required(property);
    if (!required.put) {
      throw AutomationError(kReadOnlyProperty,
                            String(required.name) + u" is read only: it follows from the others");
    }
    required.put(object_, value);
  }

  std::vector<UserField> UserFields() const override {
    return ReadUserFields(object_.lines(), object_.item());
  }
  std::optional<UserField> FindUserField(StringView name) const override {
    return desktop::FindUserField(object_.lines(), object_.item(), name);
  }
  void PutUserField(const UserField& field) override { object_.PutField(field); }
  void RemoveUserField(StringView name) override { object_.RemoveField(name); }

 private:
  const PropertyTable& Table() const {
    static const PropertyTable tasks(TaskProperties());
    static const PropertyTable appointments(AppointmentProperties());
    return object_.is_task() ? tasks : appointments;
  }

  const CalendarProperty& Required(StringView property) const {
    const auto found = Table().by_name.find(String(property));
    if (found == Table().by_name.end()) throw AutomationError(kMemberNotFound);
    return *found->second;
  }

  CalendarObject object_;
};

// An item with what the standard demands of each, and `lines`.
std::unique_ptr<ItemDocument> NewItem(const std::string& kind, const std::string& lines) {
  const std::string now = UtcNow();
  std::string content = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Kestrelon//Mailbox//EN\r\n";
  content += "BEGIN:" + kind + "\r\nUID:" + NewUid() + "\r\nDTSTAMP:" + now + "\r\nCREATED:" + now;
  content += "\r\nLAST-MODIFIED:" + now + "\r\n" + lines + "END:" + kind + "\r\nEND:VCALENDAR\r\n";
  return ReadCalendarItem(std::move(content));
}

}  // namespace

std::unique_ptr<ItemDocument> ReadCalendarItem(std::string content) {
  CalendarObject object(std::move(content));
  if (!object.has_item()) return nullptr;
  return std::make_unique<CalendarDocument>(std::move(object));
}

std::unique_ptr<ItemDocument> NewTask() { return NewItem("VTODO", "STATUS:NEEDS-ACTION\r\n"); }

std::unique_ptr<ItemDocument> NewAppointment() {
  constexpr int64_t kHalfHour = 1800;
  const int64_t start = (std::time(nullptr) / kHalfHour + 1) * kHalfHour;
  const auto format = [](int64_t seconds) {
    return FormatUtc(FromUnixTime(seconds).value_or(Date{}));
  };
  return NewItem("VEVENT", "DTSTART:" + format(start) + "\r\nDTEND:" + format(start + kHalfHour) +
                               "\r\nTRANSP:OPAQUE\r\n");
}

}  // namespace kestrelon::desktop
