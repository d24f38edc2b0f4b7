#include "platform/linux/UserLocale.h"

#include <langinfo.h>
#include <locale.h>

#include <memory>
#include <type_traits>

namespace kestrelon {
namespace {

struct LocaleCloser {
  void operator()(locale_t locale) const { freelocale(locale); }
};
using OwnedLocale = std::unique_ptr<std::remove_pointer_t<locale_t>, LocaleCloser>;

// The locale of the environment; the plain "C" one where that is not installed.
OwnedLocale UserLocale() {
  locale_t locale = newlocale(LC_ALL_MASK, "", nullptr);
  if (locale == nullptr) locale = newlocale(LC_ALL_MASK, "C", nullptr);
  return OwnedLocale(locale);
}

}  // namespace

std::string OrderOfDateFormat(const std::string& format) {
  for (size_t at = format.find('%'); at != std::string::npos && at + 1 < format.size();
       at = format.find('%', at + 2)) {
    char kind = format[at + 1];
    // Flags and modifiers of the conversion.
    if ((kind == 'E' || kind == 'O' || kind == '-') && at + 2 < format.size()) {
      kind = format[at + 2];
    }
    switch (kind) {
      case 'm':
      case 'b':
      case 'B':
      case 'D':
        return "0";
      case 'd':
      case 'e':
        return "1";
      case 'y':
      case 'Y':
      case 'F':
      case 'C':
        return "2";
      default:
        break;
    }
  }
  return "1";
}

std::string ShortDateOrder() {
  const OwnedLocale locale = UserLocale();
  return OrderOfDateFormat(nl_langinfo_l(D_FMT, locale.get()));
}

String CurrencySymbol() {
  const OwnedLocale locale = UserLocale();
  const locale_t previous = uselocale(locale.get());
  const lconv* conventions = localeconv();
  const std::string symbol = conventions->currency_symbol;
  const std::string code = conventions->int_curr_symbol;
  uselocale(previous);
  return Trim(FromUtf8(symbol.empty() ? code : symbol));
}

}  // namespace kestrelon
