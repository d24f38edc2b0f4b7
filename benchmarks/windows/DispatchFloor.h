// What a call through IDispatch costs where the system does all of it: the measure for ours.
#pragma once

#include "platform/windows/Win32.h"

namespace kestrelon::benchmarks {

// The id of `GetVersion`, the only member.
constexpr DISPID kFloorVersion = 0x60030016;

// An object with a dual interface whose `GetVersion` answers `text`; it is called by DispInvoke,
// from a type library that is written for it into a temporary file.
ComPtr<IDispatch> MakeDispatchFloor(StringView text);

}  // namespace kestrelon::benchmarks
