// The type library in this module.
#pragma once

#include "platform/windows/Win32.h"

namespace kestrelon {

// Full path of the file of this module, however long.
String ModulePath();

// Loads the library from this module's own file on first use, whether or not one is registered.
// Belongs to one control and lives in its apartment; the system itself shares what several have
// loaded.
class TypeLibrary {
 public:
  // The description of a type of the library (Identifiers.h). Fails where the library cannot be
  // read.
  HRESULT GetTypeInformation(REFGUID type, ITypeInfo** information);

 private:
  ComPtr<ITypeLib> library_;
};

}  // namespace kestrelon
