// The type library in this module.
#pragma once

#include "platform/windows/Win32.h"

namespace kestrelon {

// The description of a type of the library (Identifiers.h). Fails where the library cannot be read.
HRESULT GetTypeInformation(REFGUID type, ITypeInfo** information);

}  // namespace kestrelon
