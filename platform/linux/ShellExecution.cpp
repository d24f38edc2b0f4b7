#include "platform/linux/LinuxPlatform.h"

namespace kestrelon {

int32_t LinuxPlatform::ShellExecute(SystemHandle /*window*/, const String& /*operation*/,
                                    const String& /*file*/, const String& /*parameters*/,
                                    const String& /*directory*/, int32_t /*show*/) {
  return 0;
}

}  // namespace kestrelon
