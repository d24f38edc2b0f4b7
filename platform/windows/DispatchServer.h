// A late-bound object of ours, as COM clients see it.
#pragma once

#include "automation/DispatchObject.h"
#include "platform/windows/Win32.h"

namespace kestrelon {

// The interface of an object, which it keeps alive: a COM server's own, or else one that calls
// `object`. Null for Nothing.
//
// Every name that a client asks for gets an id, since our objects tell what they know only when
// they are called; an unknown member then fails as DISP_E_MEMBERNOTFOUND.
ComPtr<IDispatch> DispatchOf(const DispatchPointer& object);

}  // namespace kestrelon
