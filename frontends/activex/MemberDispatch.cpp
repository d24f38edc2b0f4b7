#include "frontends/activex/MemberDispatch.h"

namespace kestrelon {

HRESULT FindDispatchIds(LPOLESTR* names, UINT count, DISPID* ids) {
  for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
  const Member* member = FindMember(FromWide(names[0]));
  if (member == nullptr) return DISP_E_UNKNOWNNAME;
  ids[0] = static_cast<DISPID>(member->dispid);
  return count == 1 ? S_OK : DISP_E_UNKNOWNNAME;
}

HRESULT InvokeMember(KestrelonControl& /*control*/, DISPID /*dispid*/, LCID /*locale*/,
                     WORD /*flags*/, DISPPARAMS& /*parameters*/, VARIANT* /*result*/,
                     EXCEPINFO* /*exception*/, UINT* /*failed_argument*/) {
  return DISP_E_MEMBERNOTFOUND;
}

}  // namespace kestrelon
