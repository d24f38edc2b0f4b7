// Errors at the border to COM: the one place where HRESULTs and EXCEPINFOs become AutomationErrors,
// and exceptions become HRESULTs.
#pragma once

#include <new>

#include "automation/AutomationError.h"
#include "platform/windows/Win32.h"

namespace kestrelon {

// Failures of calling an object become the run-time's numbers (438 for an unknown member, 13 for a
// type that does not fit, 429 for a server that cannot be created, 462 for one that is gone);
// 0x800Axxxx is number xxxx; every other number stays. The description is the classic text, or else
// the system's.
AutomationError ErrorOf(HRESULT failure);
// What a server says of its failure; fills in what it left for later, and frees its texts. Where it
// says nothing, the description is that of its number.
AutomationError ErrorOf(EXCEPINFO& information);

inline void Check(HRESULT result) {
  if (FAILED(result)) throw ErrorOf(result);
}

// The HRESULT of an error number: the opposite of ErrorOf.
HRESULT ScodeOf(int32_t number);
// Fills in `information`, which may be null, for DISP_E_EXCEPTION. `source` names who failed.
void FillExceptionInfo(const AutomationError& error, StringView source, EXCEPINFO* information);

// Runs what a COM method does; no exception passes. An AutomationError becomes its HRESULT.
template <typename Action>
HRESULT Guard(const Action& action) noexcept {
  try {
    return action();
  } catch (const AutomationError& error) {
    return ScodeOf(error.number());
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_UNEXPECTED;
  }
}

}  // namespace kestrelon
