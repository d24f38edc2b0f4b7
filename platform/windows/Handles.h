// The system's handles and windows, which are pointers, as the numbers that the control keeps.
#pragma once

#include "platform/Platform.h"

namespace kestrelon {

inline SystemHandle HandleOf(void* pointer) { return reinterpret_cast<uintptr_t>(pointer); }
inline void* PointerOf(SystemHandle handle) {
  return reinterpret_cast<void*>(static_cast<uintptr_t>(handle));
}

}  // namespace kestrelon
