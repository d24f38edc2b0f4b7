// Pieces that the members write alike when they fill a contact.
#pragma once

#include "Control/ObjectState.h"

namespace kestrelon {

// Adds a user property of type text to the item, or takes the one of that name that it has. The
// item's user properties become those of the object state.
Object AddUserProperty(ControlContext& context, const Object& item, StringView name);

// Writes line `number` (from 1) of a street, unless it is empty: the first line as it is, a later
// one behind what the property holds and a line break.
void WriteStreetLine(const Object& contact, StringView property, int number, const String& line);

}  // namespace kestrelon
