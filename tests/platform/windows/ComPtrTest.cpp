#include <gtest/gtest.h>

#include "platform/windows/ComClass.h"

namespace kestrelon {
namespace {

class Plain final : public ComClass<IUnknown> {};

TEST(ComPtr, AttachTakesTheReferenceOver) {
  const int32_t alive = live_objects;
  ComPtr<Plain> first = MakeComObject<Plain>();
  ComPtr<IUnknown> second = first;
  EXPECT_EQ(second->AddRef(), 3U);
  ComPtr<IUnknown> third;
  third.Attach(second.Get());
  EXPECT_EQ(live_objects, alive + 1);
  first = nullptr;
  second = third;
  third = nullptr;
  EXPECT_EQ(second->AddRef(), 2U);
  second->Release();
  second = nullptr;
  EXPECT_EQ(live_objects, alive);
}

}  // namespace
}  // namespace kestrelon
