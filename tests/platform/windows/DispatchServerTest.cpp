#include <gtest/gtest.h>

#include "platform/windows/DispatchServer.h"
#include "tests/platform/windows/RecordingDispatch.h"
#include "tests/support/ScriptedDesktop.h"

namespace kestrelon::testing {
namespace {

// What clients of ours make of such objects is seen by the tests that are led through COM.
class ServerTest : public ::testing::Test {
 protected:
  HRESULT Invoke(DISPID id, WORD flags, DISPPARAMS parameters, VARIANT* result = nullptr) {
    return server_->Invoke(id, IID_NULL, 0, flags, &parameters, result, nullptr, nullptr);
  }

  ScriptedDesktop desktop_;
  const ComPtr<IDispatch> server_ = DispatchOf(desktop_.NamedObject("Page").AsObject());
  const Object client_ = ObjectOf(server_.Get());
};

TEST_F(ServerTest, GetsItsOwnObjectsBackAsArguments) {
  const Object child = client_.GetChild(u"Child");
  EXPECT_NE(std::dynamic_pointer_cast<DispatchClient>(child.pointer()), nullptr);
  client_.Put(u"Item", child, Named(u"Start", child));
  EXPECT_EQ(desktop_.log.back(), "Page.Item = <Page.Child>, Start:=<Page.Child>");
}

TEST_F(ServerTest, FailsAsItsObjectDoes) {
  desktop_.Fail("Page.Name", AutomationError(kMemberNotFound, u"Own words"));
  EXPECT_EQ(FailureOf([&] { client_.Get(u"Name"); }), "438: Own words");
  EXPECT_EQ(desktop_.log, (Lines{"Page.Name"})) << "it was not asked twice";
  desktop_.cut_at = 1;  // by what is no AutomationError
  EXPECT_EQ(Invoke(DISPID_VALUE, DISPATCH_METHOD, {}), E_UNEXPECTED);
}

TEST_F(ServerTest, IsWalkedInAnySteps) {
  desktop_.Answer("Page.Each", {Value(Value::Array{u"a", 2, Value()})});
  Variant collection;
  ASSERT_EQ(Invoke(DISPID_NEWENUM, DISPATCH_PROPERTYGET, {}, &collection), S_OK);
  ComPtr<IEnumVARIANT> elements;
  ASSERT_EQ(collection.punkVal->QueryInterface(IID_PPV_ARGS(&elements)), S_OK);
  Variant found[3];
  ULONG fetched = 9;
  EXPECT_EQ(elements->Skip(1), S_OK);
  EXPECT_EQ(elements->Next(3, found, &fetched), S_FALSE);
  EXPECT_EQ(fetched, 2U);
  EXPECT_EQ(found[0].lVal, 2);
}

TEST_F(ServerTest, StandsCarelessCallers) {
  Variant value(Value(u"v"));
  DISPID unknown = 4711;
  EXPECT_EQ(Invoke(DISPID_VALUE, DISPATCH_PROPERTYPUT, {}), DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(Invoke(DISPID_VALUE, DISPATCH_METHOD, {&value, &unknown, 1, 1}), DISP_E_PARAMNOTFOUND);
  EXPECT_EQ(Invoke(DISPID_VALUE, DISPATCH_METHOD, {nullptr, &unknown, 0, 1}), E_INVALIDARG);
  EXPECT_EQ(Invoke(DISPID_VALUE, DISPATCH_METHOD, {&value, nullptr, 1, 1}), E_INVALIDARG);
  EXPECT_EQ(Invoke(DISPID_VALUE, DISPATCH_METHOD, {nullptr, nullptr, 1, 0}), E_INVALIDARG);
  EXPECT_EQ(Invoke(unknown, DISPATCH_METHOD, {}), DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(Invoke(DISPID_VALUE, DISPATCH_PROPERTYPUTREF, {&value, nullptr, 1, 0}), S_OK);
  EXPECT_EQ(desktop_.log, (Lines{"Page = \"v\""})) << "a put without the put's name";
  EXPECT_EQ(Invoke(DISPID_VALUE, DISPATCH_METHOD, {}), S_OK) << "an answer that nobody takes";
}

}  // namespace
}  // namespace kestrelon::testing
