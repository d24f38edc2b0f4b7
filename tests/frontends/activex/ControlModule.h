// The module as it was built, next to the test program.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>

#include "frontends/activex/Identifiers.h"

namespace kestrelon {

inline std::filesystem::path BinaryFolder() {
  wchar_t path[1024];
  GetModuleFileNameW(nullptr, path, static_cast<DWORD>(std::size(path)));
  return std::filesystem::path(path).parent_path();
}

class ControlModule {
 public:
  explicit ControlModule(const std::filesystem::path& path = BinaryFolder() /
                                                             "KestrelonControl2005.dll")
      : module_(LoadLibraryW(path.c_str())) {
    EXPECT_NE(module_, nullptr) << GetLastError();
  }
  ControlModule(const ControlModule&) = delete;
  ControlModule& operator=(const ControlModule&) = delete;
  ~ControlModule() { FreeLibrary(module_); }

  // One of the exports without arguments.
  HRESULT Call(const char* name) const { return Find<HRESULT(STDAPICALLTYPE*)()>(name)(); }

  HRESULT GetClassObject(REFCLSID clsid, REFIID iid, void** object) const {
    return Find<LPFNGETCLASSOBJECT>("DllGetClassObject")(clsid, iid, object);
  }

  template <typename Interface = IUnknown>
  ComPtr<Interface> MakeControl() const {
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(GetClassObject(kControlClass, IID_PPV_ARGS(&factory)), S_OK);
    ComPtr<Interface> control;
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_PPV_ARGS(&control)), S_OK);
    return control;
  }

 private:
  template <typename Function>
  Function Find(const char* name) const {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module_, name)));
  }

  HMODULE module_;
};

}  // namespace kestrelon
