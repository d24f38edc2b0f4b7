// The arguments of one call from a COM client, led to a member's parameters and back.
#pragma once

#include <vector>

#include "Control/Interface.h"
#include "platform/windows/Win32.h"

namespace kestrelon {

class CallArguments {
 public:
  // `parameters` belongs to the caller, and must outlive this. `locale` is that of the conversions.
  CallArguments(const Member& member, LCID locale, DISPPARAMS& parameters);

  // Finds every argument's parameter and converts it; `failed_argument`, which may be null, gets
  // the place of the one at fault where there is one.
  //
  // - DISP_E_BADPARAMCOUNT: more arguments than parameters, or fewer than required ones.
  // - DISP_E_PARAMNOTFOUND: a name that the member does not have, or a parameter given twice.
  // - DISP_E_PARAMNOTOPTIONAL: enough arguments, but not the required ones.
  // - DISP_E_TYPEMISMATCH, DISP_E_OVERFLOW: an argument that does not become the parameter's type.
  HRESULT Receive(UINT* failed_argument);

  // One value a parameter, for Member::invoke, which stores into them.
  std::vector<Value>& values() { return values_; }

  // Stores into the caller's variables what the member has changed.
  //
  // A script's variable takes the parameter's type, one of a fixed type keeps its own. A variable
  // that cannot take the new value keeps the old one: the member has done its work by then, and the
  // caller learns more from its result than from a failure of this. Arrays and decimals by
  // reference stay too, for no member makes any.
  void WriteBack();

 private:
  HRESULT Place(UINT* failed_argument);
  HRESULT Convert(UINT* failed_argument);
  HRESULT ConvertOne(size_t index);

  const Member& member_;
  const LCID locale_;
  DISPPARAMS& parameters_;
  std::vector<VARIANT*> given_;  // one a parameter; null where nothing was given
  std::vector<Value> values_;
  std::vector<Value> received_;  // as they were before the call, of those by reference
};

// Puts a member's value of type `type` into `variant`, which must be empty.
void StoreTyped(ParameterType type, const Value& value, VARIANT& variant);

}  // namespace kestrelon
