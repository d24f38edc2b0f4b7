#include "platform/linux/LinuxPlatform.h"

namespace kestrelon {

uint32_t LinuxPlatform::GetTempFileNameAnsi(const char* /*folder*/, const char* /*prefix*/,
                                            uint32_t /*unique*/, char* /*buffer*/) {
  return 0;
}

}  // namespace kestrelon
