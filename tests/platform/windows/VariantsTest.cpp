#include <gtest/gtest.h>

#include <cstring>

#include "platform/windows/Variants.h"
#include "tests/platform/windows/RecordingDispatch.h"

namespace kestrelon::testing {
namespace {

using namespace std::literals;

template <typename T>
VARIANT Made(int type, T content) {
  VARIANT made{};
  std::memcpy(&made.llVal, &content, sizeof content);
  made.vt = static_cast<VARTYPE>(type);
  return made;
}

std::string Read(const VARIANT& variant) {
  std::string text;
  const std::string failure = FailureOf([&] { text = Describe(ValueOf(variant)); });
  return failure.empty() ? text : failure;
}

// What each reads as, however it is referred to, and as what it is stored again.
TEST(Variants, ReadAndStoreEveryType) {
  const Bstr text(u"a\0\u20AC"sv);
  VARIANT decimal{};
  ASSERT_EQ(VarDecFromR8(-2.5, &decimal.decVal), S_OK);
  decimal.vt = VT_DECIMAL;
  const std::pair<VARIANT, std::string> cases[] = {
      {Made(VT_EMPTY, 0), "0:"},
      {Made(VT_NULL, 0), "1:"},
      {Made(VT_ERROR, DISP_E_PARAMNOTFOUND), "10:"},
      {Made(VT_BOOL, short{1}), "11:True"},
      {Made(VT_I1, int8_t{-128}), "3:-128"},
      {Made(VT_UI1, uint8_t{255}), "3:255"},
      {Made(VT_I2, int16_t{-32768}), "3:-32768"},
      {Made(VT_UI2, uint16_t{65535}), "3:65535"},
      {Made(VT_I4, INT32_MIN), "3:-2147483648"},
      {Made(VT_INT, -7), "3:-7"},
      {Made(VT_UI4, UINT32_MAX), "5:4294967295"},
      {Made(VT_UINT, uint32_t{7}), "3:7"},
      {Made(VT_I8, int64_t{-5}), "3:-5"},
      {Made(VT_I8, int64_t{1} << 40), "5:1099511627776"},
      {Made(VT_UI8, uint64_t{1} << 63), "5:9.22337203685478E+18"},
      {Made(VT_R4, 0.5F), "5:0.5"},
      {Made(VT_R8, -1e300), "5:-1E+300"},
      {Made(VT_CY, int64_t{12'3456}), "5:12.3456"},
      {decimal, "5:-2.5"},
      {Made(VT_DATE, 45000.5), "7:2023-03-15 12:00:00"},
      {Made(VT_BSTR, text.get()), "8:a\0\xE2\x82\xAC"s},
      {Made(VT_BSTR, BSTR{}), "8:"},
      {Made(VT_DISPATCH, nullptr), "9:"},
      {Made(VT_UNKNOWN, nullptr), "9:"}};
  for (const auto& [variant, value] : cases) {
    const void* content = variant.vt == VT_DECIMAL ? static_cast<const void*>(&variant.decVal)
                                                   : static_cast<const void*>(&variant.llVal);
    const VARIANT reference = Made(variant.vt | VT_BYREF, content);
    EXPECT_EQ(Read(variant), value) << variant.vt;
    EXPECT_EQ(Read(Variant(ValueOf(variant))), value) << variant.vt << " stored";
    if (variant.vt <= VT_NULL) continue;  // to which there are no references
    EXPECT_EQ(Read(reference), value) << "reference to " << variant.vt;
    EXPECT_EQ(Read(Made(VT_BYREF | VT_VARIANT, &reference)), value) << "twice to " << variant.vt;
  }
  EXPECT_EQ(Variant(Value(true)).boolVal, VARIANT_TRUE);
}

TEST(Variants, RefusesWhatItCannotReadAndSaysSo) {
  VARIANT ring = Made(VT_BYREF | VT_VARIANT, nullptr);
  ring.pvarVal = &ring;
  const int32_t number = 5;
  for (const VARIANT& variant :
       {Made(VT_ERROR, E_FAIL), Made(VT_RECORD, nullptr), Made(VT_BYREF | VT_RECORD, &number),
        Made(VT_BYREF | VT_EMPTY, &number), Made(VT_BYREF | VT_I4, nullptr),
        Made(VT_BYREF | VT_VARIANT, nullptr), Made(VT_BYREF | VT_ARRAY | VT_I4, nullptr), ring}) {
    EXPECT_EQ(Read(variant), "13: Type mismatch: a value of variant type " +
                                 std::to_string(variant.vt) + " cannot be used here");
  }
  class Plain final : public ComClass<IUnknown> {};
  const ComPtr<Plain> plain = MakeComObject<Plain>();
  EXPECT_EQ(Read(Made(VT_UNKNOWN, plain.Get())),
            "430: Class does not support Automation or does not support expected interface");
}

TEST(Variants, ReadAndStoreArrays) {
  Variant row;
  row.parray = SafeArrayCreateVector(VT_UI1, 0, 2);
  row.vt = VT_ARRAY | VT_UI1;
  std::memcpy(row.parray->pvData, "\x01\xFF", 2);
  EXPECT_EQ(Read(row), "8204:[3:1][3:255]");
  EXPECT_EQ(Read(Made(VT_BYREF | VT_ARRAY | VT_UI1, &row.parray)), "8204:[3:1][3:255]");
  EXPECT_EQ(Read(Made(VT_ARRAY | VT_RECORD, row.parray)).substr(0, 3), "13:");
  // Called texts, it is still numbers.
  EXPECT_EQ(Read(Made(VT_ARRAY | VT_BSTR, row.parray)), "8204:[3:1][3:255]");
  EXPECT_EQ(row.parray->cLocks, 0U);
  EXPECT_EQ(Read(Made(VT_ARRAY | VT_BSTR, nullptr)), "8204:");

  SAFEARRAYBOUND bounds[] = {{2, 1}, {2, -3}};
  Variant table;
  table.parray = SafeArrayCreate(VT_VARIANT, 2, bounds);
  table.vt = VT_ARRAY | VT_VARIANT;
  auto* cells = static_cast<VARIANT*>(table.parray->pvData);
  StoreValue(Value(u"a"), cells[0]);
  StoreValue(Value(Value::Array{1, true}), cells[2]);
  EXPECT_EQ(Read(table), "8204:[8:a][0:][8204:[3:1][11:True]][0:]");
  EXPECT_EQ(Read(Variant(ValueOf(table))), Read(table));
  EXPECT_EQ(Read(Variant(Value(Value::Array{}))), "8204:");
}

}  // namespace
}  // namespace kestrelon::testing
