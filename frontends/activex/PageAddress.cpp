#include "frontends/activex/PageAddress.h"

// These stand on Win32.h.
#include <exdisp.h>
#include <mshtml.h>
#include <servprov.h>
#include <shlguid.h>

#include <algorithm>

#include "platform/windows/Variants.h"

namespace kestrelon {
namespace {

struct Service {
  const GUID& service;
  const IID& iid;
};

// Hosts are exact about what they are asked for.
const Service kPageServices[] = {
    {SID_SWebBrowserApp, __uuidof(IWebBrowserApp)},
    {SID_SWebBrowserApp, __uuidof(IWebBrowser2)},
    {__uuidof(IWebBrowser2), __uuidof(IWebBrowser2)},
    {__uuidof(IHTMLDocument2), __uuidof(IHTMLDocument2)},
    {SID_SHTMLWindow, __uuidof(IHTMLWindow2)},
};

template <typename Interface>
ComPtr<Interface> As(const ComPtr<IUnknown>& object) {
  ComPtr<Interface> found;
  if (object != nullptr) object->QueryInterface(__uuidof(Interface), &found);
  return found;
}

ComPtr<IUnknown> ContainerOf(const ComPtr<IUnknown>& site) {
  const auto client_site = As<IOleClientSite>(site);
  ComPtr<IOleContainer> container;
  if (client_site != nullptr) client_site->GetContainer(&container);
  return container;
}

// What the host offers of the services that only pages have. Null for one that it has and does not
// give.
std::vector<ComPtr<IUnknown>> PageServicesOf(const ComPtr<IUnknown>& site) {
  std::vector<ComPtr<IUnknown>> objects;
  const auto provider = As<IServiceProvider>(site);
  if (provider == nullptr) return objects;
  for (const Service& asked : kPageServices) {
    ComPtr<IUnknown> object;
    if (FAILED(provider->QueryService(asked.service, asked.iid, &object))) continue;
    objects.push_back(std::move(object));
  }
  return objects;
}

// Adds the text that `object` answers to `get`: "" when it fails.
template <typename Interface>
void AddText(const ComPtr<Interface>& object, HRESULT (STDMETHODCALLTYPE Interface::*get)(BSTR*),
             std::vector<String>& texts) {
  BSTR answer = nullptr;
  const bool is_answered = object != nullptr && SUCCEEDED((object.Get()->*get)(&answer));
  const Bstr owned(is_answered ? answer : nullptr);
  String text(owned.text());
  if (std::find(texts.begin(), texts.end(), text) == texts.end()) texts.push_back(std::move(text));
}

// The addresses of what was found behind a site.
struct FoundAddresses {
  std::vector<String> documents;
  std::vector<String> browsers;
};

// Whether `object` is a part of a page; then its address is added.
bool AddAddresses(const ComPtr<IUnknown>& object, FoundAddresses& found) {
  const auto document = As<IHTMLDocument2>(object);
  if (document != nullptr) AddText(document, &IHTMLDocument2::get_URL, found.documents);

  const auto window = As<IHTMLWindow2>(object);
  if (window != nullptr) {
    ComPtr<IHTMLDocument2> shown;
    window->get_document(&shown);
    AddText(shown, &IHTMLDocument2::get_URL, found.documents);
  }

  ComPtr<IWebBrowser> browser = As<IWebBrowserApp>(object);
  if (browser == nullptr) browser = As<IWebBrowser2>(object);
  if (browser != nullptr) AddText(browser, &IWebBrowser::get_LocationURL, found.browsers);

  return document != nullptr || window != nullptr || browser != nullptr;
}

HWND ValidWindow(HRESULT result, HWND window) {
  return SUCCEEDED(result) && IsWindow(window) ? window : nullptr;
}

HWND WindowOfPart(const ComPtr<IUnknown>& object) {
  ComPtr<IOleWindow> part = As<IOleInPlaceSite>(object);
  if (part == nullptr) part = As<IOleWindow>(object);
  if (part != nullptr) {
    HWND window = nullptr;
    const HRESULT result = part->GetWindow(&window);
    if (ValidWindow(result, window) != nullptr) return window;
  }
  const auto browser = As<IWebBrowserApp>(object);
  if (browser == nullptr) return nullptr;
  SHANDLE_PTR handle = 0;
  const HRESULT result = browser->get_HWND(&handle);
  return ValidWindow(result, reinterpret_cast<HWND>(handle));
}

}  // namespace

std::vector<String> PageAddressesOf(IUnknown& site) {
  const ComPtr<IUnknown> kept(&site);
  FoundAddresses found;
  AddAddresses(kept, found);
  AddAddresses(ContainerOf(kept), found);
  for (const ComPtr<IUnknown>& service : PageServicesOf(kept)) {
    if (!AddAddresses(service, found)) found.browsers.emplace_back();
  }
  // While a page loads, its browser may still be told to show the one before.
  return found.documents.empty() ? found.browsers : found.documents;
}

HWND WindowOf(IUnknown& site) {
  const ComPtr<IUnknown> kept(&site);
  std::vector<ComPtr<IUnknown>> parts = PageServicesOf(kept);
  parts.insert(parts.begin(), {kept, ContainerOf(kept)});  // the nearest first
  for (const ComPtr<IUnknown>& part : parts) {
    if (const HWND window = WindowOfPart(part)) return window;
  }
  return nullptr;
}

}  // namespace kestrelon
