#include "Control/LocaleAndEnvironment.h"

#include <limits>
#include <string>

namespace kestrelon {
namespace {

constexpr uint32_t kTempPathSize = 255;

}  // namespace

String TrimAtNull(const String& text) {
  const size_t null = text.find(u'\0');
  return null == String::npos ? String(u"1") : text.substr(0, null);
}

String dateFormatOrder(ControlContext& context) {
  String order = u"1";
  IgnoreFailures([&] {
    std::string buffer(3, '\0');
    context.platform.GetLocaleInfoAnsi(kLocaleUserDefault, kLocaleIdate, buffer.data(), 2);
    order = TrimAtNull(FromAnsi(buffer));
  });
  return order;
}

String currencyFormat(ControlContext& context) {
  const uint32_t locale = context.platform.UserDefaultLocale();
  const int32_t size = context.platform.GetLocaleInfoAnsi(locale, kLocaleScurrency, nullptr, 0);
  if (size <= 0) throw AutomationError(kInvalidProcedureCall);
  std::string buffer(static_cast<size_t>(size), '\0');
  context.platform.GetLocaleInfoAnsi(locale, kLocaleScurrency, buffer.data(), size);
  return FromAnsi(buffer.substr(0, buffer.find('\0')));
}

String GetVersion(ControlContext& context) {
  String version = u"Unknown";
  IgnoreFailures([&] {
    const FileVersion file = context.platform.ComponentVersion();
    version = FromUtf8(std::to_string(file.major) + "." + std::to_string(file.minor) + "." +
                       std::to_string(file.revision));
  });
  return version;
}

String ReadTempPath(ControlContext& context) {
  std::string buffer(kTempPathSize, ' ');
  const uint32_t length = context.platform.GetTempPathAnsi(kTempPathSize, buffer.data());
  if (length > static_cast<uint32_t>(std::numeric_limits<int16_t>::max())) {
    throw AutomationError(kOverflow);
  }
  return FromAnsi(buffer.substr(0, length));
}

String GetTheTempPath(ControlContext& context) {
  String path;
  IgnoreFailures([&] { path = ReadTempPath(context); });
  return path;
}

}  // namespace kestrelon
