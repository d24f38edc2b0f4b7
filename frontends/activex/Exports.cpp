// The four entry points of an in-process server.

#include "frontends/activex/ClassFactory.h"
#include "frontends/activex/Identifiers.h"
#include "frontends/activex/Registration.h"
#include "platform/windows/ComErrors.h"

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
  using namespace kestrelon;
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (!IsEqualCLSID(clsid, kControlClass)) return CLASS_E_CLASSNOTAVAILABLE;
  return Guard([&] { return MakeComObject<ClassFactory>()->QueryInterface(iid, object); });
}

STDAPI DllCanUnloadNow() { return kestrelon::IsModuleInUse() ? S_FALSE : S_OK; }

STDAPI DllRegisterServer() { return kestrelon::Register(); }

STDAPI DllUnregisterServer() { return kestrelon::Unregister(); }
