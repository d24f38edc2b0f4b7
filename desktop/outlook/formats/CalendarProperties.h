// Outlook's properties of appointments and tasks, each as what it reads and writes of the object.
#pragma once

#include <functional>
#include <vector>

#include "desktop/outlook/formats/CalendarObject.h"

namespace kestrelon::desktop {

struct CalendarProperty {
  StringView name;  // in Outlook's spelling
  std::function<Value(const CalendarObject&)> get;
  // Empty for one that is read only.
  std::function<void(CalendarObject&, const Value&)> put;
};

// In the order in which a user wants to see them.
const std::vector<CalendarProperty>& TaskProperties();
const std::vector<CalendarProperty>& AppointmentProperties();

// --- Properties that several items have ---

CalendarProperty TextProperty(StringView name, const char* line);
// The description; its forms in other formats go when it changes.
CalendarProperty BodyProperty();
CalendarProperty FlagProperty(StringView name, const char* line);    // TRUE or no line
CalendarProperty NumberProperty(StringView name, const char* line);  // 0 without a line
CalendarProperty TimeProperty(StringView name, const char* line);    // read only
CalendarProperty ImportanceProperty();
CalendarProperty SensitivityProperty();
CalendarProperty CategoriesProperty();
CalendarProperty ReminderSetProperty();
CalendarProperty IsRecurringProperty();

// A date as it was put, in whole seconds: texts are read as the user types them.
Date DateOf(const Value& value);

}  // namespace kestrelon::desktop
