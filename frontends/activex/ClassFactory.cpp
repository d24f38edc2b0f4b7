#include "frontends/activex/ClassFactory.h"

#include "frontends/activex/ControlObject.h"
#include "platform/windows/ComErrors.h"

namespace kestrelon {
namespace {

std::atomic<int32_t> locks = 0;

}  // namespace

STDMETHODIMP ClassFactory::CreateInstance(IUnknown* outer, REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (outer != nullptr) return CLASS_E_NOAGGREGATION;
  return Guard([&] { return MakeComObject<ControlObject>()->QueryInterface(iid, object); });
}

STDMETHODIMP ClassFactory::LockServer(BOOL lock) {
  locks += lock ? 1 : -1;
  return S_OK;
}

bool IsModuleInUse() { return live_objects > 0 || locks > 0; }

}  // namespace kestrelon
