// The properties of an item as text.
#pragma once

#include <gtest/gtest.h>

#include "desktop/outlook/formats/ItemDocument.h"

namespace kestrelon::desktop {

// A date as FormatDate gives it; everything in UTF-8.
inline std::string Show(const ItemDocument& item, StringView property) {
  const Value value = item.Get(property);
  return ToUtf8(value.IsDate() ? FormatDate(value.AsDate()) : value.ToText());
}

// `expected` are properties with their values, and " | " between them: "subject=a | body=b".
inline void ExpectProperties(const ItemDocument& item, const String& expected) {
  for (const String& line : Split(expected, u" | ")) {
    const String property = line.substr(0, line.find(u'='));
    EXPECT_EQ(ToUtf8(property) + "=" + Show(item, property), ToUtf8(line));
  }
}

}  // namespace kestrelon::desktop
