#include "benchmarks/windows/DispatchFloor.h"

#include "platform/windows/ComClass.h"
#include "platform/windows/ComErrors.h"
#include "platform/windows/Variants.h"

namespace kestrelon {
namespace benchmarks {

constexpr IID kVersioned = {
    0x6C1E0A57, 0x3F5B, 0x4C7E, {0x9A, 0x41, 0x55, 0x0B, 0x8E, 0x21, 0xD9, 0x3C}};

struct Versioned : IDispatch {
  virtual HRESULT STDMETHODCALLTYPE GetVersion(BSTR* version) = 0;
};

}  // namespace benchmarks

template <>
inline bool Answers<benchmarks::Versioned>(REFIID iid) {
  return IsEqualIID(iid, benchmarks::kVersioned) || IsEqualIID(iid, IID_IDispatch);
}

namespace benchmarks {
namespace {

LPOLESTR Name(const wchar_t* name) { return const_cast<LPOLESTR>(name); }

// GetVersion([out, retval] BSTR* version)
void AddVersion(ICreateTypeInfo& type) {
  TYPEDESC text{};
  text.vt = VT_BSTR;
  ELEMDESC parameter{};
  parameter.tdesc.vt = VT_PTR;
  parameter.tdesc.lptdesc = &text;
  parameter.paramdesc.wParamFlags = PARAMFLAG_FOUT | PARAMFLAG_FRETVAL;
  FUNCDESC function{};
  function.memid = kFloorVersion;
  function.lprgelemdescParam = &parameter;
  function.cParams = 1;
  function.funckind = FUNC_PUREVIRTUAL;
  function.invkind = INVOKE_FUNC;
  function.callconv = CC_STDCALL;
  function.elemdescFunc.tdesc.vt = VT_HRESULT;
  Check(type.AddFuncDesc(0, &function));
  LPOLESTR names[] = {Name(L"GetVersion"), Name(L"version")};
  Check(type.SetFuncAndParamNames(0, names, 2));
}

void DeriveFromDispatch(ICreateTypeInfo& type) {
  ComPtr<ITypeLib> standard;
  ComPtr<ITypeInfo> base;
  Check(LoadTypeLib(L"stdole2.tlb", &standard));
  Check(standard->GetTypeInfoOfGuid(IID_IDispatch, &base));
  HREFTYPE reference = 0;
  Check(type.AddRefTypeInfo(base.Get(), &reference));
  Check(type.AddImplType(0, reference));
}

void WriteTypeLibrary(const wchar_t* path) {
  ComPtr<ICreateTypeLib2> library;
  ComPtr<ICreateTypeInfo> type;
  Check(CreateTypeLib2(sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32, path, &library));
  Check(library->SetName(Name(L"Floor")));
  Check(library->CreateTypeInfo(Name(L"Versioned"), TKIND_INTERFACE, &type));
  Check(type->SetGuid(kVersioned));
  Check(type->SetTypeFlags(TYPEFLAG_FDUAL | TYPEFLAG_FOLEAUTOMATION | TYPEFLAG_FDISPATCHABLE));
  DeriveFromDispatch(*type.Get());
  AddVersion(*type.Get());
  Check(type->LayOut());
  Check(library->SaveAllChanges());
}

ComPtr<ITypeInfo> MakeDescription() {
  wchar_t folder[MAX_PATH];
  wchar_t path[MAX_PATH];
  if (GetTempPathW(MAX_PATH, folder) == 0 || GetTempFileNameW(folder, L"knl", 0, path) == 0) {
    throw AutomationError(kPathNotFound);
  }
  WriteTypeLibrary(path);
  ComPtr<ITypeInfo> description;
  {
    ComPtr<ITypeLib> library;
    Check(LoadTypeLibEx(path, REGKIND_NONE, &library));
    Check(library->GetTypeInfoOfGuid(kVersioned, &description));
  }
  DeleteFileW(path);
  return description;
}

class DispatchFloor final : public ComClass<Versioned> {
 public:
  explicit DispatchFloor(StringView text) : text_(text) {}

  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    *count = 1;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo** information) override {
    return description_.CopyTo(information);
  }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
    return DispGetIDsOfNames(description_.Get(), names, count, ids);
  }
  STDMETHODIMP Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* parameters,
                      VARIANT* result, EXCEPINFO* exception, UINT* failed_argument) override {
    return DispInvoke(static_cast<Versioned*>(this), description_.Get(), member, flags, parameters,
                      result, exception, failed_argument);
  }
  STDMETHODIMP GetVersion(BSTR* version) override {
    *version = Bstr(text_).Detach();
    return S_OK;
  }

 private:
  const String text_;
  const ComPtr<ITypeInfo> description_ = MakeDescription();
};

}  // namespace

ComPtr<IDispatch> MakeDispatchFloor(StringView text) { return MakeComObject<DispatchFloor>(text); }

}  // namespace benchmarks
}  // namespace kestrelon
