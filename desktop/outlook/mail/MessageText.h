// What the headers and bodies of a message say, decoded. Every reading is the best there is: texts
// in character sets that are unknown or wrong keep what can be read of them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "automation/Date.h"

namespace kestrelon::desktop {

// Header values are taken unfolded or not.
String DecodeHeaderText(std::string_view value);

struct MailAddress {
  String name;     // the address where there is no name
  String address;  // "" for a name alone
};
// Groups are taken for their members, an empty one for a name alone. A list that is none gives
// its text as one name.
std::vector<MailAddress> DecodeAddresses(std::string_view value);

// In the user's local time.
std::optional<Date> DecodeHeaderDate(std::string_view value);

// Line ends are CR LF. "" for a kind that the message does not have.
struct MessageBodies {
  String plain;  // of the HTML text when there is no plain one
  String html;
};
MessageBodies ReadBodies(std::string_view message);

}  // namespace kestrelon::desktop
