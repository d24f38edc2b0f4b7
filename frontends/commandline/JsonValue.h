// Values of the automation world as JSON, and back.
#pragma once

#include <nlohmann/json.hpp>

#include "automation/Value.h"

namespace kestrelon::commandline {

// Null, Empty and what was left out are null; a date is its text; a document its markup; any other
// object {"object": its type}.
nlohmann::ordered_json ToJson(const Value& value);

// null is Null. Error 13 for a JSON object.
Value FromJson(const nlohmann::ordered_json& json);

}  // namespace kestrelon::commandline
