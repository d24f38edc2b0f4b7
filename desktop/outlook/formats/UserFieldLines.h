// User properties as lines of a vCard or of an iCalendar component:
// `X-KESTRELON-PROPERTY;X-NAME=name;X-TYPE=type:value`.
#pragma once

#include <optional>
#include <vector>

#include "desktop/outlook/formats/ContentLines.h"
#include "desktop/outlook/formats/ItemDocument.h"

namespace kestrelon::desktop {

constexpr std::string_view kUserFieldLine = "X-KESTRELON-PROPERTY";

// Names match without regard to case.
std::vector<UserField> ReadUserFields(const ContentLines& lines, const Component& component);
std::optional<UserField> FindUserField(const ContentLines& lines, const Component& component,
                                       StringView name);
// Replaces the field of that name, which keeps its spelling, or adds one at the component's end;
// `component` follows the change. Nothing changes when the field is there as given.
void PutUserField(ContentLines& lines, Component& component, const UserField& field);
void RemoveUserField(ContentLines& lines, Component& component, StringView name);

}  // namespace kestrelon::desktop
