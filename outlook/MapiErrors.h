// What the errors of MAPI and Exchange mean to a user who opens an appointment.
#pragma once

#include "automation/AutomationError.h"
#include "automation/Text.h"

namespace kestrelon {

constexpr int32_t kMapiNotFound = static_cast<int32_t>(0x8004010F);  // MAPI_E_NOT_FOUND

// A sentence for the user; one with the number and the description for an error that is not known.
String DescribeMapiError(const AutomationError& error);

}  // namespace kestrelon
