// A host as far as the control looks at one: a page in a browser, or an application.
#pragma once

#include "platform/windows/ComClass.h"
#include "platform/windows/Variants.h"
// These stand on Win32.h.
#include <exdisp.h>
#include <mshtml.h>
#include <servprov.h>

#include <array>
#include <cstring>
#include <functional>

namespace kestrelon {

// Ways that lead from a site to its page. Hosts have one or several.
enum Ways {
  kNoWay = 0,
  kContainer = 1,
  kDocument = 2,
  kPageWindow = 4,
  kBrowser = 8,
  kHiddenBrowser = 16,  // known as a service, and not given
  kItself = 32,         // the site is the document
};

// An object of a large interface, of which some members answer; every other one is not implemented.
struct StandIn {
  template <typename Member, typename Answer>
  StandIn(void* host, const IID& iid, Member member, Answer* answer) : host(host), iid(iid) {
    slots.fill(reinterpret_cast<void*>(&NotImplemented));
    slots[0] = reinterpret_cast<void*>(&QueryInterface);
    slots[1] = reinterpret_cast<void*>(&AddRef);
    slots[2] = reinterpret_cast<void*>(&Release);
    Implement(member, answer);
  }
  template <typename Member, typename Answer>
  void Implement(Member member, Answer* answer) {
    ptrdiff_t place[2];  // of a virtual member: that in the table, in bytes, plus one
    static_assert(sizeof(place) == sizeof(member));
    std::memcpy(place, &member, sizeof(place));
    slots[(place[0] - 1) / sizeof(void*)] = reinterpret_cast<void*>(answer);
  }
  static HRESULT STDMETHODCALLTYPE NotImplemented() { return E_NOTIMPL; }
  static HRESULT STDMETHODCALLTYPE QueryInterface(StandIn* self, REFIID iid, void** object) {
    const bool is_known = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, self->iid);
    *object = is_known ? self : nullptr;
    if (is_known) AddRef(self);
    return is_known ? S_OK : E_NOINTERFACE;
  }
  static ULONG STDMETHODCALLTYPE AddRef(StandIn* self) { return ++self->references; }
  static ULONG STDMETHODCALLTYPE Release(StandIn* self) { return --self->references; }

  void** table = slots.data();  // first, where callers look for it
  void* host;
  IID iid;
  int references = 0;
  std::array<void*, 256> slots;
};

class StandInHost final : public ComClass<IOleClientSite, IServiceProvider, IOleWindow> {
 public:
  StandInHost(int ways, StringView document_address, StringView browser_address)
      : ways(ways), document_address(document_address), browser_address(browser_address) {
    browser_.Implement(&IWebBrowser2::get_HWND, &GetWindowOfBrowser);
  }
  ~StandInHost() override {
    if (document_.references + browser_.references + window_.references != 0) std::abort();
  }

  int ways;
  String document_address;  // "!" for one that cannot be read
  String browser_address;
  std::function<void()> when_asked = [] {};
  HWND window = nullptr;
  HWND browser_window = nullptr;
  GUID browser_service = __uuidof(IWebBrowserApp);

  // As which of its interfaces the browser is known.
  void OfferBrowserAs(REFIID iid) { browser_.iid = iid; }

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    return (ways & kItself) != 0 && iid == document_.iid
               ? StandIn::QueryInterface(&document_, iid, object)
               : ComClass::QueryInterface(iid, object);
  }
  STDMETHODIMP GetContainer(IOleContainer** container) override {
    *container = nullptr;
    if ((ways & kContainer) == 0) return E_NOINTERFACE;
    return StandIn::QueryInterface(&document_, IID_IUnknown, reinterpret_cast<void**>(container));
  }
  STDMETHODIMP QueryService(REFGUID service, REFIID iid, void** object) override {
    *object = nullptr;
    const auto has = [&](int way, REFGUID id) { return (ways & way) != 0 && service == id; };
    if (has(kDocument, document_.iid)) return StandIn::QueryInterface(&document_, iid, object);
    if (has(kPageWindow, window_.iid)) return StandIn::QueryInterface(&window_, iid, object);
    const bool is_browser = service == browser_service;
    if (is_browser && (ways & kHiddenBrowser) != 0) return S_OK;
    if (is_browser && (ways & kBrowser) != 0) {
      return StandIn::QueryInterface(&browser_, iid, object);
    }
    return E_NOINTERFACE;
  }
  STDMETHODIMP GetWindow(HWND* handle) override {
    *handle = window;
    return S_OK;
  }
  STDMETHODIMP ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }
  STDMETHODIMP SaveObject() override { return E_NOTIMPL; }
  STDMETHODIMP GetMoniker(DWORD, DWORD, IMoniker**) override { return E_NOTIMPL; }
  STDMETHODIMP ShowObject() override { return E_NOTIMPL; }
  STDMETHODIMP OnShowWindow(BOOL) override { return E_NOTIMPL; }
  STDMETHODIMP RequestNewObjectLayout() override { return E_NOTIMPL; }

 private:
  static StandInHost& HostOf(StandIn* self) { return *static_cast<StandInHost*>(self->host); }
  static HRESULT Tell(const String& address, BSTR* text) {
    if (address == u"!") return E_ACCESSDENIED;
    *text = Bstr(address).Detach();
    return S_OK;
  }
  static HRESULT STDMETHODCALLTYPE GetUrl(StandIn* self, BSTR* text) {
    HostOf(self).when_asked();
    return Tell(HostOf(self).document_address, text);
  }
  static HRESULT STDMETHODCALLTYPE GetLocation(StandIn* self, BSTR* text) {
    return Tell(HostOf(self).browser_address, text);
  }
  static HRESULT STDMETHODCALLTYPE GetWindowOfBrowser(StandIn* self, SHANDLE_PTR* handle) {
    *handle = reinterpret_cast<SHANDLE_PTR>(HostOf(self).browser_window);
    return S_OK;
  }
  static HRESULT STDMETHODCALLTYPE GetDocument(StandIn* self, void** document) {
    StandIn& shown = HostOf(self).document_;
    return StandIn::QueryInterface(&shown, shown.iid, document);
  }

  StandIn document_{this, __uuidof(IHTMLDocument2), &IHTMLDocument2::get_URL, &GetUrl};
  StandIn window_{this, __uuidof(IHTMLWindow2), &IHTMLWindow2::get_document, &GetDocument};
  StandIn browser_{this, __uuidof(IWebBrowser2), &IWebBrowser2::get_LocationURL, &GetLocation};
};

}  // namespace kestrelon
