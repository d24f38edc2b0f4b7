// Calls from COM clients, led to the members of the interface table.
#pragma once

#include "Control/KestrelonControl.h"
#include "platform/windows/Win32.h"

namespace kestrelon {

// Ids are those of the table; a member's parameters are numbered from 0.
HRESULT FindDispatchIds(LPOLESTR* names, UINT count, DISPID* ids);

// One call, as IDispatch::Invoke describes it. Arguments are converted to the parameters' types as
// VariantChangeTypeEx does in the locale `locale`; an argument that does not fit is
// DISP_E_TYPEMISMATCH or DISP_E_OVERFLOW with its place in `failed_argument`, before the member
// runs. Arguments given by reference are written back, converted to the type of their variable. An
// AutomationError of the member is DISP_E_EXCEPTION with number and description.
HRESULT InvokeMember(KestrelonControl& control, DISPID dispid, LCID locale, WORD flags,
                     DISPPARAMS& parameters, VARIANT* result, EXCEPINFO* exception,
                     UINT* failed_argument);

}  // namespace kestrelon
