#include <activscp.h>
#include <servprov.h>

#include "platform/windows/ComErrors.h"
#include "tests/frontends/activex/StandIns.h"

namespace kestrelon::testing {
namespace {

// VBScript creates objects only for a host that has services to ask for, whatever they are.
class ScriptSite final : public ComClass<IActiveScriptSite, IServiceProvider> {
 public:
  ScriptSite(ComPtr<IDispatch> host, const ComPtr<IUnknown>& page) : host_(std::move(host)) {
    if (page != nullptr) Check(page.As(&page_));
  }

  STDMETHODIMP GetLCID(LCID*) override { return E_NOTIMPL; }
  STDMETHODIMP GetItemInfo(LPCOLESTR, DWORD wanted, IUnknown** item, ITypeInfo**) override {
    if ((wanted & SCRIPTINFO_IUNKNOWN) == 0) return TYPE_E_ELEMENTNOTFOUND;
    return host_.CopyTo(item);
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
    fault_ =
        u"line " + FromUtf8(std::to_string(line + 1)) + u": " + ErrorOf(information).description();
    return S_OK;
  }
  STDMETHODIMP OnEnterScript() override { return S_OK; }
  STDMETHODIMP OnLeaveScript() override { return S_OK; }

  STDMETHODIMP QueryService(REFGUID service, REFIID iid, void** object) override {
    *object = nullptr;
    return page_ == nullptr ? E_NOINTERFACE : page_->QueryService(service, iid, object);
  }

  const String& fault() const { return fault_; }
  void LetGo() {
    host_.Reset();
    page_.Reset();
  }

 private:
  NotCounted not_counted_;
  ComPtr<IDispatch> host_;
  ComPtr<IServiceProvider> page_;
  String fault_;
};

}  // namespace

String RunScript(Language language, const ComPtr<IDispatch>& host, const ComPtr<IUnknown>& page,
                 const std::vector<String>& texts) {
  CLSID engine_class{};
  Check(CLSIDFromProgID(language == Language::kJScript ? L"JScript" : L"VBScript", &engine_class));
  ComPtr<IActiveScript> engine;
  Check(CoCreateInstance(engine_class, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IActiveScript),
                         reinterpret_cast<void**>(engine.GetAddressOf())));
  ComPtr<IActiveScriptParse> parser;
  Check(engine.As(&parser));
  const auto site = MakeComObject<ScriptSite>(host, page);
  Check(engine->SetScriptSite(site.Get()));
  Check(parser->InitNew());
  Check(engine->AddNamedItem(L"host", SCRIPTITEM_ISVISIBLE));
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
