// Whatever the parameters of a call hold: the dialer gets them or the user is told why not, and
// what a dialer makes of them is digits, one argument, or an error.
#include <cstdint>

#include "desktop/tapi/DialRequest.h"
#include "telephony/Dialer.h"
#include "tests/fuzz/Require.h"
#include "tests/support/ScriptedDesktop.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace kestrelon;
  const String parameters = FromUtf8(std::string(reinterpret_cast<const char*>(data), size));
  testing::ScriptedDesktop desktop;
  ControlContext context{desktop};
  Value sParameters = parameters;
  MakeCall(context, sParameters);
  Require(desktop.messages.size() == (desktop.log.empty() ? 1 : 0));
  const String number = desktop::NumberToDial(parameters);
  IgnoreFailures(
      [&] {
        const std::string link = desktop::TelephoneLink(number);
        Require(link.find_last_not_of("0123456789") == (link[4] == '+' ? 4 : 3));
      },
      [&] {
        const std::string argument = desktop::FillPlaceholders("{number}", parameters);
        Require(argument == ToUtf8(Trim(number)) && !argument.starts_with('-'));
      });
  return 0;
}
