#include <gmock/gmock.h>

#include <sstream>

#include "frontends/commandline/TerminalText.h"

namespace kestrelon::commandline {
namespace {

using ::testing::ElementsAre;

TEST(TerminalTextTest, KeepsWhatATerminalCanShow) {
  EXPECT_EQ(OneLine(u"Zo\u00EB\tM\u00FCller \u738B\x7F\u009B\u2066!"),
            "Zo\u00EB M\u00FCller \u738B!");
  EXPECT_THAT(Lines(u"a\r\n\r\nb\nc\r\n"), ElementsAre("a", "", "b", "c"));
  TextTable table;
  table.AddRow({"\u738B\u660E", "x"});
  table.AddRow({"Zoe\u0308!", "y"});
  std::ostringstream out;
  table.Print(out);
  EXPECT_EQ(out.str(), "\u738B\u660E  x\nZoe\u0308!  y\n");
}

}  // namespace
}  // namespace kestrelon::commandline
