#include "frontends/activex/Registration.h"

namespace kestrelon {

HRESULT Register() { return SELFREG_E_CLASS; }
HRESULT Unregister() { return SELFREG_E_CLASS; }

}  // namespace kestrelon
