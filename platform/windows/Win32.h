// The Windows headers as this code uses them: without the macros that would rename functions of
// ours, and with the way between the system's texts and ours. Comes before every other header of
// Windows; no file includes <windows.h> itself.
#pragma once

#include <windows.h>
// These stand on it.
#include <objsafe.h>
#include <ole2.h>
#include <olectl.h>
#include <shellapi.h>
#undef ShellExecute

#include <wrl/client.h>

#include <string_view>

#include "automation/Text.h"

namespace kestrelon {

// Owns a reference to a COM object.
template <typename Interface>
class ComPtr : public Microsoft::WRL::ComPtr<Interface> {
 public:
  using Base = Microsoft::WRL::ComPtr<Interface>;
  using Base::Base;
  using Base::operator=;

  // Takes over the caller's reference. NOTE: that of mingw-w64's header counts one more, which
  // nobody would release.
  void Attach(Interface* object) { *this->ReleaseAndGetAddressOf() = object; }
};

// Both are UTF-16; the systems only disagree about the name of its unit.
static_assert(sizeof(wchar_t) == sizeof(char16_t));
inline const wchar_t* AsWide(const String& text) {
  return reinterpret_cast<const wchar_t*>(text.c_str());
}
inline String FromWide(std::wstring_view text) {
  return String(reinterpret_cast<const char16_t*>(text.data()), text.size());
}

// The module that this code is linked into.
HMODULE ThisModule();

}  // namespace kestrelon
