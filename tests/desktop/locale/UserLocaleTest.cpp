#include <gtest/gtest.h>

#include "desktop/locale/UserLocale.h"

namespace kestrelon::desktop {
namespace {

TEST(OrderOfDateFormat, IsToldByTheFirstPartOfTheDate) {
  const struct {
    const char* format;
    const char* order;
  } cases[] = {
      {"%m/%d/%y", "0"}, {"%D", "0"},        {"%b %e, %Y", "0"}, {"%d.%m.%Y", "1"},
      {"%-d/%m", "1"},   {"%Od %B", "1"},    {"%Y-%m-%d", "2"},  {"%F", "2"},
      {"%Ey/%m", "2"},   {"%a, %d %b", "1"}, {"", "1"},          {"%", "1"},
  };
  for (const auto& example : cases) {
    EXPECT_EQ(OrderOfDateFormat(example.format), example.order) << example.format;
  }
}

}  // namespace
}  // namespace kestrelon::desktop
