#include "frontends/activex/TypeLibrary.h"

#include "platform/windows/ComErrors.h"

namespace kestrelon {

String ModulePath() {
  // A buffer that is too small is filled up, with nothing said of how much is missing.
  for (DWORD size = MAX_PATH;; size *= 2) {
    std::wstring path(size, L'\0');
    const DWORD length = GetModuleFileNameW(ThisModule(), path.data(), size);
    if (length < size) return FromWide(path.substr(0, length));
  }
}

HRESULT TypeLibrary::GetTypeInformation(REFGUID type, ITypeInfo** information) {
  if (information == nullptr) return E_POINTER;
  *information = nullptr;
  return Guard([&] {
    if (library_ == nullptr) {
      const HRESULT loaded = LoadTypeLibEx(AsWide(ModulePath()), REGKIND_NONE, &library_);
      if (FAILED(loaded)) return loaded;
    }
    return library_->GetTypeInfoOfGuid(type, information);
  });
}

}  // namespace kestrelon
