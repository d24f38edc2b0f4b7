#include "frontends/activex/TypeLibrary.h"

namespace kestrelon {

HRESULT GetTypeInformation(REFGUID /*type*/, ITypeInfo** information) {
  *information = nullptr;
  return TYPE_E_ELEMENTNOTFOUND;
}

}  // namespace kestrelon
