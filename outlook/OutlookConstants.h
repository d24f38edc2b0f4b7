// Constants of Outlook's object model, under their usual names.
#pragma once

#include <cstdint>

namespace kestrelon {

// OlItemType
constexpr int32_t olMailItem = 0;
constexpr int32_t olAppointmentItem = 1;
constexpr int32_t olContactItem = 2;
constexpr int32_t olTaskItem = 3;

// OlDefaultFolders
constexpr int32_t olFolderCalendar = 9;
constexpr int32_t olFolderContacts = 10;
constexpr int32_t olFolderTasks = 13;

// OlObjectClass
constexpr int32_t olAppointment = 26;
constexpr int32_t olContact = 40;
constexpr int32_t olTask = 48;

constexpr int32_t olText = 1;  // OlUserPropertyType

// OlSensitivity
constexpr int32_t olNormal = 0;
constexpr int32_t olPersonal = 1;
constexpr int32_t olPrivate = 2;
constexpr int32_t olConfidential = 3;

}  // namespace kestrelon
