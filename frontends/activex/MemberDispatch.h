// Calls from COM clients, led to the members of the interface table.
#pragma once

#include "Control/KestrelonControl.h"
#include "platform/windows/Win32.h"

namespace kestrelon {

// Ids are those of the table; a member's parameters are numbered from 0. What is unknown gets
// DISPID_UNKNOWN, and the result is DISP_E_UNKNOWNNAME. The cost does not grow with the number of
// members.
HRESULT FindDispatchIds(LPOLESTR* names, UINT count, DISPID* ids);

// One call, as IDispatch::Invoke describes it. DISP_E_MEMBERNOTFOUND for an unknown id, and for
// flags without that of the member's kind: DISPATCH_METHOD for a method, DISPATCH_PROPERTYPUT for
// the property, which is a text and can neither be read nor be put by reference.
HRESULT InvokeMember(KestrelonControl& control, DISPID dispid, LCID locale, WORD flags,
                     DISPPARAMS& parameters, VARIANT* result, EXCEPINFO* exception,
                     UINT* failed_argument);

// The same with the member at hand. Arguments are converted to the parameters' types as
// VariantChangeTypeEx does in the locale `locale`, objects by their default member; one that does
// not fit fails with its place in `failed_argument`, before the member runs, as
// CallArguments::Receive says. Arguments given by reference are written back
// (CallArguments::WriteBack), also by a member that fails. An AutomationError of the member is
// DISP_E_EXCEPTION with number and description. Any of the three last may be null.
HRESULT CallMember(KestrelonControl& control, const Member& member, LCID locale,
                   DISPPARAMS& parameters, VARIANT* result, EXCEPINFO* exception,
                   UINT* failed_argument);

}  // namespace kestrelon
