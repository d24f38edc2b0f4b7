// Build tool: writes the type library of the control from its interface table.
//
// There is no IDL file: it would be a second list of the members, and the compilers for it refuse
// default texts.

#include <cstdio>
#include <vector>

#include "Control/InterfaceTable.h"
#include "frontends/activex/Identifiers.h"
#include "platform/windows/ComErrors.h"
#include "platform/windows/Variants.h"

namespace kestrelon {
namespace {

wchar_t* NameOf(String& text) { return const_cast<wchar_t*>(AsWide(text)); }

VARTYPE VariantTypeOf(ParameterType type) {
  switch (type) {
    case ParameterType::kNone:
      return VT_VOID;
    case ParameterType::kString:
      return VT_BSTR;
    case ParameterType::kBoolean:
      return VT_BOOL;
    case ParameterType::kInteger:
      return VT_I2;
    case ParameterType::kVariant:
      return VT_VARIANT;
    case ParameterType::kXmlDocument:
    case ParameterType::kHtmlDocument:
    case ParameterType::kObject:
      return VT_DISPATCH;
  }
  return VT_VOID;
}

// A member as ICreateTypeInfo takes it.
class FunctionDescription {
 public:
  explicit FunctionDescription(const Member& member)
      : by_reference_(member.parameters.size()),
        defaults_(member.parameters.size()),
        parameters_(member.parameters.size()) {
    names_.emplace_back(member.name);
    for (size_t i = 0; i < parameters_.size(); ++i) Describe(member.parameters[i], i);
    function_.memid = static_cast<MEMBERID>(member.dispid);
    function_.lprgelemdescParam = parameters_.data();
    function_.cParams = static_cast<SHORT>(parameters_.size());
    function_.funckind = FUNC_DISPATCH;
    function_.callconv = CC_STDCALL;
    function_.elemdescFunc.tdesc.vt = VariantTypeOf(member.result);
    function_.invkind = INVOKE_FUNC;
    if (member.kind == MemberKind::kPropertyPut) {
      function_.invkind = INVOKE_PROPERTYPUT;
      names_.pop_back();  // the value of a property has no name
    }
  }
  FunctionDescription(const FunctionDescription&) = delete;
  FunctionDescription& operator=(const FunctionDescription&) = delete;
  ~FunctionDescription() {
    for (PARAMDESCEX& extension : defaults_) VariantClear(&extension.varDefaultValue);
  }

  void AddTo(ICreateTypeInfo& type, UINT index) {
    Check(type.AddFuncDesc(index, &function_));
    std::vector<LPOLESTR> names;
    for (String& name : names_) names.push_back(NameOf(name));
    Check(type.SetFuncAndParamNames(index, names.data(), static_cast<UINT>(names.size())));
  }

 private:
  void Describe(const Parameter& parameter, size_t i) {
    names_.emplace_back(parameter.name);
    by_reference_[i].vt = VariantTypeOf(parameter.type);
    ELEMDESC& element = parameters_[i];
    element.tdesc.vt = VT_PTR;
    element.tdesc.lptdesc = &by_reference_[i];
    element.paramdesc.wParamFlags = PARAMFLAG_FIN | PARAMFLAG_FOUT;
    if (!parameter.optional) return;
    element.paramdesc.wParamFlags |= PARAMFLAG_FOPT;
    if (!parameter.default_value) return;
    element.paramdesc.wParamFlags |= PARAMFLAG_FHASDEFAULT;
    element.paramdesc.pparamdescex = &defaults_[i];
    defaults_[i].cBytes = sizeof(PARAMDESCEX);
    StoreValue(*parameter.default_value, defaults_[i].varDefaultValue);
  }

  FUNCDESC function_{};
  std::vector<String> names_;
  std::vector<TYPEDESC> by_reference_;
  std::vector<PARAMDESCEX> defaults_;
  std::vector<ELEMDESC> parameters_;
};

class LibraryWriter {
 public:
  LibraryWriter(SYSKIND system, const std::wstring& path) {
    Check(CreateTypeLib2(system, path.c_str(), &library_));
    String name(kProjectName);
    String description(kModuleName);
    Check(library_->SetName(NameOf(name)));
    Check(library_->SetDocString(NameOf(description)));
    Check(library_->SetGuid(kTypeLibrary));
    Check(library_->SetVersion(1, 0));
    Check(library_->SetLcid(LOCALE_NEUTRAL));
    Check(LoadTypeLib(L"stdole2.tlb", &standard_types_));
  }

  void Write() {
    const auto members =
        AddDispatchInterface(u"_KestrelonCtrl2005", kMembersInterface,
                             TYPEFLAG_FHIDDEN | TYPEFLAG_FNONEXTENSIBLE | TYPEFLAG_FDISPATCHABLE);
    UINT index = 0;
    for (const Member& member : InterfaceTable()) {
      FunctionDescription(member).AddTo(*members.Get(), index++);
    }
    Check(members->LayOut());
    const auto events = AddDispatchInterface(u"__KestrelonCtrl2005", kEventsInterface,
                                             TYPEFLAG_FHIDDEN | TYPEFLAG_FDISPATCHABLE);
    Check(events->LayOut());

    const auto control = AddType(kControlName, TKIND_COCLASS, kControlClass,
                                 TYPEFLAG_FCANCREATE | TYPEFLAG_FCONTROL);
    Implement(*control.Get(), 0, *members.Get(), IMPLTYPEFLAG_FDEFAULT);
    Implement(*control.Get(), 1, *events.Get(), IMPLTYPEFLAG_FDEFAULT | IMPLTYPEFLAG_FSOURCE);
    Check(control->LayOut());
    Check(library_->SaveAllChanges());
  }

 private:
  ComPtr<ICreateTypeInfo> AddType(StringView name, TYPEKIND kind, REFGUID guid, UINT flags) {
    String text(name);
    ComPtr<ICreateTypeInfo> type;
    Check(library_->CreateTypeInfo(NameOf(text), kind, &type));
    Check(type->SetGuid(guid));
    Check(type->SetTypeFlags(flags));
    return type;
  }

  ComPtr<ICreateTypeInfo> AddDispatchInterface(StringView name, REFIID iid, UINT flags) {
    const auto type = AddType(name, TKIND_DISPATCH, iid, flags);
    ComPtr<ITypeInfo> base;
    Check(standard_types_->GetTypeInfoOfGuid(IID_IDispatch, &base));
    HREFTYPE reference = 0;
    Check(type->AddRefTypeInfo(base.Get(), &reference));
    Check(type->AddImplType(0, reference));
    return type;
  }

  void Implement(ICreateTypeInfo& type, UINT index, ICreateTypeInfo& implemented, INT flags) {
    ComPtr<ITypeInfo> information;
    Check(implemented.QueryInterface(IID_PPV_ARGS(&information)));
    HREFTYPE reference = 0;
    Check(type.AddRefTypeInfo(information.Get(), &reference));
    Check(type.AddImplType(index, reference));
    Check(type.SetImplTypeFlags(index, flags));
  }

  ComPtr<ICreateTypeLib2> library_;
  ComPtr<ITypeLib> standard_types_;
};

int Run(int argc, wchar_t** argv) {
  if (argc != 3) {
    std::fputs("Usage: TypeLibraryWriter FILE-FOR-64-BIT FILE-FOR-32-BIT\n", stderr);
    return 2;
  }
  try {
    LibraryWriter(SYS_WIN64, argv[1]).Write();
    LibraryWriter(SYS_WIN32, argv[2]).Write();
    return 0;
  } catch (const AutomationError& error) {
    std::fprintf(stderr, "The type library cannot be written: %s\n", error.what());
    return 1;
  }
}

}  // namespace
}  // namespace kestrelon

int wmain(int argc, wchar_t** argv) { return kestrelon::Run(argc, argv); }
