#include "desktop/locale/UserLocale.h"

#include <langinfo.h>
#include <locale.h>

#include <cstring>
#include <cwchar>
#include <memory>
#include <type_traits>

namespace kestrelon::desktop {
namespace {

struct LocaleCloser {
  void operator()(locale_t locale) const { freelocale(locale); }
};
using OwnedLocale = std::unique_ptr<std::remove_pointer_t<locale_t>, LocaleCloser>;

// The locale of the environment; nothing where it is not installed.
OwnedLocale UserLocale() { return OwnedLocale(newlocale(LC_ALL_MASK, "", nullptr)); }

// A text in the encoding of the locale in use.
String FromLocale(const char* text) {
  String out;
  std::mbstate_t state{};
  for (size_t left = std::strlen(text); left > 0;) {
    wchar_t character = 0;
    const size_t length = std::mbrtowc(&character, text, left, &state);
    if (length == 0 || length > left) break;
    out += static_cast<char16_t>(character);
    text += length;
    left -= length;
  }
  return out;
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
  return locale ? OrderOfDateFormat(nl_langinfo_l(D_FMT, locale.get())) : "1";
}

String CurrencySymbol() {
  const OwnedLocale locale = UserLocale();
  if (!locale) return {};
  const locale_t previous = uselocale(locale.get());
  const lconv* conventions = localeconv();
  const String symbol = FromLocale(conventions->currency_symbol);
  const String code = FromLocale(conventions->int_curr_symbol);
  uselocale(previous);
  return Trim(symbol.empty() ? code : symbol);
}

PaperSize UserPaper() {
  const OwnedLocale locale = UserLocale();
  if (!locale) return {};
  // These two are numbers, which the library returns in the place of texts.
  const auto length = [&](nl_item item) {
    return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(nl_langinfo_l(item, locale.get())));
  };
  return {length(_NL_PAPER_WIDTH), length(_NL_PAPER_HEIGHT)};
}

NumberSigns UserNumberSigns() {
  NumberSigns signs;
  signs.currency = CurrencySymbol();
  const OwnedLocale locale = UserLocale();
  if (!locale) return signs;
  const locale_t previous = uselocale(locale.get());
  const String decimal_point = FromLocale(nl_langinfo_l(RADIXCHAR, locale.get()));
  const String separator = FromLocale(nl_langinfo_l(THOUSEP, locale.get()));
  uselocale(previous);
  if (!decimal_point.empty()) signs.decimal_point = decimal_point;
  if (!separator.empty()) {
    signs.thousands_separator = separator;
  } else if (signs.decimal_point == u",") {
    signs.thousands_separator.assign(1, u'.');
  }
  return signs;
}

}  // namespace kestrelon::desktop
