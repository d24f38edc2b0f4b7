#include <gtest/gtest.h>

#include "desktop/locale/UserLocale.h"

namespace kestrelon::desktop {
namespace {

TEST(OrderOfDateFormat, IsToldByTheFirstPartOfTheDate) {
  const std::pair<const char*, const char*> cases[] = {
      {"%m/%d/%y", "0"}, {"%D", "0"},        {"%b %e, %Y", "0"}, {"%d.%m.%Y", "1"},
      {"%-d/%m", "1"},   {"%Od %B", "1"},    {"%Y-%m-%d", "2"},  {"%F", "2"},
      {"%Ey/%m", "2"},   {"%a, %d %b", "1"}, {"", "1"},          {"%", "1"},
  };
  for (const auto& [format, order] : cases) {
    EXPECT_EQ(OrderOfDateFormat(format), order) << format;
  }
}

}  // namespace
}  // namespace kestrelon::desktop
