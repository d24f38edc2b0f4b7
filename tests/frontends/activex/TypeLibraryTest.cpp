// The type library against the table that it is made from.

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <vector>

#include "Control/InterfaceTable.h"
#include "platform/windows/Variants.h"
#include "tests/frontends/activex/ControlModule.h"

namespace kestrelon {
namespace {

// As interface definitions spell them.
std::string TypeName(const TYPEDESC& type) {
  if (type.vt == VT_PTR) return TypeName(*type.lptdesc) + "*";
  static const std::map<VARTYPE, std::string> names = {
      {VT_VOID, "void"}, {VT_BSTR, "BSTR"},       {VT_BOOL, "VARIANT_BOOL"},
      {VT_I2, "short"},  {VT_VARIANT, "VARIANT"}, {VT_DISPATCH, "IDispatch*"}};
  const auto name = names.find(type.vt);
  return name == names.end() ? "type " + std::to_string(type.vt) : name->second;
}

const char* TypeName(ParameterType type) {
  const char* const names[] = {"void",    "BSTR",       "VARIANT_BOOL", "short",
                               "VARIANT", "IDispatch*", "IDispatch*",   "IDispatch*"};
  return names[static_cast<size_t>(type)];
}

std::string DefaultText(const Value& value) {
  return (value.IsBoolean() ? "boolean " : "") + ToUtf8(value.ToText());
}

// A member in the words of an interface definition.
std::string Expected(const Member& member) {
  const bool is_put = member.kind == MemberKind::kPropertyPut;
  std::ostringstream text;
  text << std::hex << member.dispid << (is_put ? " put " : " ") << TypeName(member.result) << ' '
       << ToUtf8(member.name);
  for (const Parameter& parameter : member.parameters) {
    text << "\n  [in, out";
    if (parameter.optional) text << ", optional";
    if (parameter.default_value) text << ", default " << DefaultText(*parameter.default_value);
    text << "] " << TypeName(parameter.type) << "* " << (is_put ? "" : ToUtf8(parameter.name));
  }
  return text.str();
}

std::string Described(ITypeInfo& type, const FUNCDESC& function) {
  std::vector<BSTR> names(function.cParams + 1);
  UINT count = 0;
  type.GetNames(function.memid, names.data(), static_cast<UINT>(names.size()), &count);
  std::ostringstream text;
  text << std::hex << function.memid << (function.invkind == INVOKE_PROPERTYPUT ? " put " : " ")
       << TypeName(function.elemdescFunc.tdesc) << ' ' << ToUtf8(Bstr(names[0]).text());
  for (SHORT i = 0; i < function.cParams; ++i) {
    const ELEMDESC& element = function.lprgelemdescParam[i];
    const USHORT flags = element.paramdesc.wParamFlags;
    text << "\n  [" << (flags & PARAMFLAG_FIN ? "in" : "")
         << (flags & PARAMFLAG_FOUT ? ", out" : "") << (flags & PARAMFLAG_FOPT ? ", optional" : "");
    if (flags & PARAMFLAG_FHASDEFAULT) {
      text << ", default " << DefaultText(ValueOf(element.paramdesc.pparamdescex->varDefaultValue));
    }
    text << "] " << TypeName(element.tdesc) << ' ' << ToUtf8(Bstr(names[i + 1]).text());
  }
  return text.str();
}

// Every dispatch interface begins with the functions of IDispatch.
constexpr UINT kOfIDispatch = 7;

using LibraryFile = std::pair<std::string, SYSKIND>;

class TypeLibraryTest : public testing::TestWithParam<LibraryFile> {
 protected:
  void SetUp() override {
    const auto path = BinaryFolder() / GetParam().first;
    ASSERT_EQ(LoadTypeLibEx(path.c_str(), REGKIND_NONE, &library_), S_OK) << path;
  }
  ComPtr<ITypeInfo> Type(REFGUID guid) {
    ComPtr<ITypeInfo> type;
    EXPECT_EQ(library_->GetTypeInfoOfGuid(guid, &type), S_OK);
    return type;
  }

  ComPtr<ITypeLib> library_;
};

TEST_P(TypeLibraryTest, DescribesEveryMemberOfTheTable) {
  const auto type = Type(kMembersInterface);
  UINT index = kOfIDispatch;
  for (const Member& member : InterfaceTable()) {
    FUNCDESC* function = nullptr;
    ASSERT_EQ(type->GetFuncDesc(index++, &function), S_OK);
    EXPECT_EQ(Described(*type.Get(), *function), Expected(member));
    type->ReleaseFuncDesc(function);
  }
}

TEST_P(TypeLibraryTest, MakesTheControlOfBothInterfaces) {
  TLIBATTR* library = nullptr;
  ASSERT_EQ(library_->GetLibAttr(&library), S_OK);
  EXPECT_TRUE(IsEqualGUID(library->guid, kTypeLibrary));
  EXPECT_EQ(library->syskind, GetParam().second);
  library_->ReleaseTLibAttr(library);
  const auto control = Type(kControlClass);
  const std::pair<IID, INT> interfaces[] = {
      {kMembersInterface, IMPLTYPEFLAG_FDEFAULT},
      {kEventsInterface, IMPLTYPEFLAG_FDEFAULT | IMPLTYPEFLAG_FSOURCE}};
  for (UINT i = 0; i < 2; ++i) {
    HREFTYPE reference = 0;
    ComPtr<ITypeInfo> type;
    INT flags = 0;
    ASSERT_EQ(control->GetRefTypeOfImplType(i, &reference), S_OK);
    ASSERT_EQ(control->GetRefTypeInfo(reference, &type), S_OK);
    ASSERT_EQ(control->GetImplTypeFlags(i, &flags), S_OK);
    EXPECT_EQ(flags, interfaces[i].second);
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(type->GetTypeAttr(&attributes), S_OK);
    EXPECT_TRUE(IsEqualIID(attributes->guid, interfaces[i].first));
    EXPECT_NE(attributes->wTypeFlags & TYPEFLAG_FDISPATCHABLE, 0);
    EXPECT_EQ(attributes->cFuncs, kOfIDispatch + (i == 0 ? InterfaceTable().size() : 0));
    type->ReleaseTypeAttr(attributes);
  }
}

constexpr SYSKIND kSystem = sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32;
INSTANTIATE_TEST_SUITE_P(Module, TypeLibraryTest,
                         testing::Values(LibraryFile{"KestrelonControl2005.dll", kSystem}));
#ifdef _WIN64
INSTANTIATE_TEST_SUITE_P(For32Bits, TypeLibraryTest,
                         testing::Values(LibraryFile{"../typelib/i686.tlb", SYS_WIN32}));
#endif

}  // namespace
}  // namespace kestrelon
