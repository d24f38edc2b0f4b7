// A late-bound object of ours, as COM clients see it.
#pragma once

#include "automation/DispatchObject.h"
#include "platform/windows/Win32.h"

namespace kestrelon {

// The interface of an object, which it keeps alive: a COM server's own, or else one that calls
// `object`. Null for Nothing.
//
// Every name that a client asks for gets an id, since our objects tell what they know only when
// they are called. A member that the object does not know fails like any other call, with the
// number and the text of its error; were that DISP_E_MEMBERNOTFOUND, callers would try it in
// another way.
//
// An object of ours that comes back as an argument is handed on as itself. Each call makes another
// COM object, for the same object of ours, too.
ComPtr<IDispatch> DispatchOf(const DispatchPointer& object);

}  // namespace kestrelon
