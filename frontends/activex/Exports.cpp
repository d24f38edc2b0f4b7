// The four entry points of an in-process server.

#include "frontends/activex/ClassFactory.h"
#include "frontends/activex/Identifiers.h"
#include "frontends/activex/Registration.h"
#include "platform/windows/ComErrors.h"

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (!IsEqualCLSID(clsid, kestrelon::kControlClass)) return CLASS_E_CLASSNOTAVAILABLE;
  return kestrelon::Guard([&] {
    return kestrelon::MakeComObject<kestrelon::ClassFactory>()->QueryInterface(iid, object);
  });
}

STDAPI DllCanUnloadNow() { return kestrelon::IsModuleInUse() ? S_FALSE : S_OK; }

STDAPI DllRegisterServer() { return kestrelon::Register(); }

STDAPI DllUnregisterServer() { return kestrelon::Unregister(); }
