#include "desktop/http/Address.h"

#include <algorithm>

namespace kestrelon::desktop {
namespace {

constexpr StringView kAfterScheme = u"://";

bool NeedsEncoding(unsigned char byte) {
  constexpr std::string_view kNotCarried = "\"<>\\^`{|}";
  return byte <= ' ' || byte >= 0x7F ||
         kNotCarried.find(static_cast<char>(byte)) != std::string::npos;
}

}  // namespace

std::string SchemeOf(StringView url) {
  const size_t end = url.find(kAfterScheme);
  return end == StringView::npos ? std::string() : ToUtf8(LowerCase(url.substr(0, end)));
}

std::string AddressOnTheWire(StringView url) {
  const size_t server = std::min(url.find(kAfterScheme), url.size());
  const size_t after = std::min(server + kAfterScheme.size(), url.size());
  const size_t path = std::min(url.find_first_of(u"/?#", after), url.size());
  std::string address = ToUtf8(url.substr(0, path));
  for (const char byte : ToUtf8(url.substr(path))) {
    const auto code = static_cast<unsigned char>(byte);
    if (!NeedsEncoding(code)) {
      address += byte;
      continue;
    }
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    address.append({'%', kDigits[code >> 4], kDigits[code & 15]});
  }
  return address;
}

}  // namespace kestrelon::desktop
