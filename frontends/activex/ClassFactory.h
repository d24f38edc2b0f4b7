// Makes controls for COM.
#pragma once

#include "platform/windows/ComClass.h"

namespace kestrelon {

class ClassFactory final : public ComClass<IClassFactory> {
 public:
  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** object) override;
  STDMETHODIMP LockServer(BOOL lock) override;
};

// Whether objects or locks keep this module loaded.
bool IsModuleInUse();

}  // namespace kestrelon
