#include "Control/ServerName.h"

#include <limits>

namespace kestrelon {
namespace {

constexpr int64_t kSchemeLength = 7;  // "http://"

String HostOf(const String& address) {
  // The count is a 16-bit one.
  const int64_t count = static_cast<int64_t>(address.size()) - kSchemeLength;
  if (count > std::numeric_limits<int16_t>::max()) throw AutomationError(kOverflow);
  // NOTE: seven characters are dropped whatever they are, so "https://host/" leaves "/host/" and
  // with it the empty name. Pages rely on nothing else being stored for a secure site.
  const String rest = Right(address, count);
  const size_t slash = rest.find(u'/');
  return Left(rest, slash == String::npos ? -1 : static_cast<int64_t>(slash));
}

}  // namespace

void ServerName(ControlContext& context, String& value) {
  try {
    value = HostOf(value);
    context.state.server_name = value;
  } catch (const AutomationError&) {
    // NOTE: the report adds texts and numbers, which is itself a type mismatch; that is the error
    // that pages have always seen here, and no message box with it.
    throw AutomationError(kTypeMismatch);
  }
}

}  // namespace kestrelon
