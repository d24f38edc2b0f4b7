// Appointments and tasks as iCalendar objects, one VEVENT or VTODO a file (with its exceptions and
// time zones).
//
// Dates are local times of the user, as Outlook shows them: UTC and zoned times are converted, days
// are midnight. User properties are X-KESTRELON-PROPERTY lines as in contacts.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "desktop/outlook/formats/ItemDocument.h"

namespace kestrelon::desktop {

// What the content of an .ics file is: an appointment, a task, or neither. Cheap: it looks, it does
// not parse.
std::optional<ItemClass> ClassOfCalendarObject(std::string_view content);

// nullptr when there is neither VEVENT nor VTODO. Of an item with exceptions, the properties are
// those of the series.
std::unique_ptr<ItemDocument> ReadCalendarItem(std::string content);

// A task without dates; an appointment of half an hour at the next half hour. With a fresh UID.
std::unique_ptr<ItemDocument> NewTask();
std::unique_ptr<ItemDocument> NewAppointment();

// The items of a file, each as the content of a file of its own with the time zones it needs:
// components of one UID belong together. The bytes of the components do not change.
std::vector<std::string> SplitCalendar(std::string_view content);

}  // namespace kestrelon::desktop
