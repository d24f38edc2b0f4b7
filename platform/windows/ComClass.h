// Base of the COM objects that this code offers: counts its references, finds its interfaces, and
// is counted itself, so that a module knows when it may be unloaded and a test whether it leaked.
#pragma once

#include <atomic>

#include "platform/windows/Win32.h"

namespace kestrelon {

// How many such objects of this module are alive.
inline std::atomic<int32_t> live_objects = 0;

// The interface `iid` answered by `Interface`: itself, and what its specialisation adds.
template <typename Interface>
bool Answers(REFIID iid) {
  return IsEqualIID(iid, __uuidof(Interface));
}

// A new object has one reference, which its maker owns (MakeComObject).
template <typename... Interfaces>
class ComClass : public Interfaces... {
 public:
  ComClass() { ++live_objects; }
  ComClass(const ComClass&) = delete;
  ComClass& operator=(const ComClass&) = delete;

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = IsEqualIID(iid, IID_IUnknown) ? Identity() : FindInterface(iid);
    if (*object == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --references_;
    if (left == 0) {
      references_ = 1;  // whoever counts it while it is taken down must not delete it again
      delete this;
    }
    return left;
  }

 protected:
  virtual ~ComClass() { --live_objects; }

 private:
  template <typename First, typename...>
  struct FirstOf {
    using Type = First;
  };
  void* Identity() { return static_cast<typename FirstOf<Interfaces...>::Type*>(this); }
  void* FindInterface(REFIID iid) {
    void* found = nullptr;
    ((found == nullptr && Answers<Interfaces>(iid) ? found = static_cast<Interfaces*>(this)
                                                   : nullptr),
     ...);
    return found;
  }

  std::atomic<ULONG> references_ = 1;
};

template <typename Class, typename... Args>
ComPtr<Class> MakeComObject(Args&&... args) {
  ComPtr<Class> object;
  object.Attach(new Class(std::forward<Args>(args)...));
  return object;
}

}  // namespace kestrelon
