#include "tests/frontends/activex/ScriptHost.h"

#include <activscp.h>
#include <servprov.h>

#include <cstdio>

#include "platform/windows/ComErrors.h"

namespace kestrelon::testing {
namespace {

// VBScript creates objects only for a host that has services to ask for, whatever they are.
class ScriptSite final : public ComClass<IActiveScriptSite, IServiceProvider> {
 public:
  explicit ScriptSite(const ScriptHost& host) : host_(host) {}

  STDMETHODIMP GetLCID(LCID*) override { return E_NOTIMPL; }
  STDMETHODIMP GetItemInfo(LPCOLESTR, DWORD wanted, IUnknown** item, ITypeInfo**) override {
    if ((wanted & SCRIPTINFO_IUNKNOWN) == 0) return TYPE_E_ELEMENTNOTFOUND;
    return host_.host.CopyTo(item);
  }
  STDMETHODIMP GetDocVersionString(BSTR*) override { return E_NOTIMPL; }
  STDMETHODIMP OnScriptTerminate(const VARIANT*, const EXCEPINFO*) override { return S_OK; }
  STDMETHODIMP OnStateChange(SCRIPTSTATE) override { return S_OK; }
  STDMETHODIMP OnScriptError(IActiveScriptError* error) override {
    EXCEPINFO information{};
    DWORD context = 0;
    ULONG line = 0;
    LONG column = 0;
    error->GetExceptionInfo(&information);
    error->GetSourcePosition(&context, &line, &column);
    char place[60];
    std::snprintf(place, sizeof place, "line %u: error 0x%08X: ", static_cast<unsigned>(line + 1),
                  static_cast<unsigned>(information.scode));
    fault_ = FromUtf8(place) + ErrorOf(information).description();
    return S_OK;
  }
  STDMETHODIMP OnEnterScript() override { return S_OK; }
  STDMETHODIMP OnLeaveScript() override { return S_OK; }

  STDMETHODIMP QueryService(REFGUID service, REFIID iid, void** object) override {
    *object = nullptr;
    ComPtr<IServiceProvider> page;
    if (host_.page == nullptr || FAILED(host_.page.As(&page))) return E_NOINTERFACE;
    return page->QueryService(service, iid, object);
  }

  const String& fault() const { return fault_; }
  void LetGo() { host_ = {}; }

 private:
  NotCounted not_counted_;
  ScriptHost host_;
  String fault_;
};

}  // namespace

String ScriptHost::Run(const std::vector<String>& texts) const {
  CLSID engine_class{};
  Check(CLSIDFromProgID(language == Language::kJScript ? L"JScript" : L"VBScript", &engine_class));
  ComPtr<IActiveScript> engine;
  Check(CoCreateInstance(engine_class, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IActiveScript),
                         reinterpret_cast<void**>(engine.GetAddressOf())));
  ComPtr<IActiveScriptParse> parser;
  Check(engine.As(&parser));
  const auto site = MakeComObject<ScriptSite>(*this);
  Check(engine->SetScriptSite(site.Get()));
  Check(parser->InitNew());
  if (host != nullptr) Check(engine->AddNamedItem(L"host", SCRIPTITEM_ISVISIBLE));
  Check(engine->SetScriptState(SCRIPTSTATE_STARTED));
  HRESULT result = S_OK;
  for (const String& text : texts) {
    result = parser->ParseScriptText(AsWide(text), nullptr, nullptr, nullptr, 0, 0,
                                     SCRIPTTEXT_ISVISIBLE, nullptr, nullptr);
    if (FAILED(result)) break;
  }
  engine->Close();
  site->LetGo();
  if (FAILED(result) && site->fault().empty()) throw ErrorOf(result);
  return site->fault();
}

}  // namespace kestrelon::testing
