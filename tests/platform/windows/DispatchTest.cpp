#include <gtest/gtest.h>

#include "platform/windows/WindowsPlatform.h"

namespace kestrelon {
namespace {

TEST(Dispatch, DrivesARealServer) {
  WindowsPlatform platform([] { return HWND(); });
  const Object document = platform.CreateObject(u"MSXML2.DOMDocument", {});
  EXPECT_TRUE(document.Call(u"loadXML", u"<a><b c='1'/><b c='2'/></a>").ToBoolean());
  const Object first = document.CallChild(u"selectSingleNode", u"a/b[1]");
  EXPECT_EQ(first.Call(u"getAttribute", u"c").ToText(), u"1");
}

}  // namespace
}  // namespace kestrelon
