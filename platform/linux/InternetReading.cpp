#include "platform/linux/LinuxPlatform.h"

namespace kestrelon {

SystemHandle LinuxPlatform::OpenInternet(const String& /*agent*/, uint32_t /*access_type*/) {
  return 0;
}

SystemHandle LinuxPlatform::OpenInternetUrl(SystemHandle /*connection*/, const String& /*url*/,
                                            uint32_t /*flags*/) {
  return 0;
}

bool LinuxPlatform::ReadInternetFile(SystemHandle /*file*/, char* /*buffer*/, uint32_t /*size*/,
                                     uint32_t& /*bytes_read*/) {
  return false;
}

void LinuxPlatform::CloseInternetHandle(SystemHandle /*handle*/) {}

}  // namespace kestrelon
