// Texts and variants of COM: their owners, and the way from and to the control's values.
#pragma once

#include "automation/Value.h"
#include "platform/windows/Win32.h"

namespace kestrelon {

// Owns a BSTR.
class Bstr {
 public:
  explicit Bstr(BSTR text = nullptr) : text_(text) {}
  explicit Bstr(StringView text);
  ~Bstr() { SysFreeString(text_); }
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;

  StringView text() const;
  BSTR get() const { return text_; }
  BSTR* Receive() { return &text_; }  // to be filled in once
  BSTR Detach() { return std::exchange(text_, nullptr); }

 private:
  BSTR text_;
};

// Owns what a VARIANT holds.
class Variant : public VARIANT {
 public:
  Variant() { VariantInit(this); }
  explicit Variant(const Value& value);
  ~Variant() { VariantClear(this); }
  Variant(Variant&& other) noexcept;
  Variant& operator=(Variant&&) = delete;

  // What it holds, for whoever owns it from now on.
  VARIANT Detach();
};

// The value of a variant, by reference or not. Numbers of every width are numbers, a currency and a
// decimal too; an array of several dimensions is one list of all its elements, and objects are
// late-bound ones (DispatchClient). Error 13 for what the control's values do not know (records,
// error codes) and for a reference that leads nowhere; 430 for an object without IDispatch.
Value ValueOf(const VARIANT& variant);

// Puts a value into `variant`, which must be empty. An omitted argument is DISP_E_PARAMNOTFOUND;
// an object of ours gets a dispatch interface (DispatchServer).
void StoreValue(const Value& value, VARIANT& variant);

}  // namespace kestrelon
