#include "desktop/xml/Collation.h"

#include <unicode/ucol.h>
#include <unicode/uloc.h>

#include <algorithm>
#include <array>
#include <cstdlib>

#include "automation/AutomationError.h"

namespace kestrelon::desktop {

std::string UserCollationLanguage() {
  std::string name;
  for (const char* variable : {"LC_ALL", "LC_COLLATE", "LANG"}) {
    const char* value = std::getenv(variable);
    if (name.empty() && value != nullptr) name = value;
  }
  name = name.substr(0, name.find_first_of(".@"));
  if (name == "C" || name == "POSIX") return {};
  std::replace(name.begin(), name.end(), '_', '-');
  return name;
}

Collation::Collation(const std::string& language, FirstCase first_case) {
  UErrorCode status = U_ZERO_ERROR;
  std::array<char, ULOC_FULLNAME_CAPACITY> locale{};
  uloc_forLanguageTag(language.c_str(), locale.data(), static_cast<int32_t>(locale.size() - 1),
                      nullptr, &status);
  if (U_FAILURE(status)) locale.fill('\0');
  status = U_ZERO_ERROR;
  // "" would stand for the process's own locale.
  collator_.reset(ucol_open(locale[0] == '\0' ? "root" : locale.data(), &status));
  ucol_setAttribute(collator_.get(), UCOL_CASE_FIRST,
                    first_case == FirstCase::kUpper ? UCOL_UPPER_FIRST : UCOL_LOWER_FIRST, &status);
  if (U_FAILURE(status)) {
    throw AutomationError(kOutOfMemory,
                          u"The sort order cannot be set up: " + FromUtf8(u_errorName(status)));
  }
}

std::string Collation::KeyOf(StringView text) const {
  std::array<uint8_t, 256> buffer;
  const auto length = static_cast<int32_t>(text.size());
  const int32_t size = ucol_getSortKey(collator_.get(), text.data(), length, buffer.data(),
                                       static_cast<int32_t>(buffer.size()));
  if (size <= static_cast<int32_t>(buffer.size())) {
    return std::string(buffer.begin(), buffer.begin() + size);
  }
  std::string key(static_cast<size_t>(size), '\0');
  ucol_getSortKey(collator_.get(), text.data(), length, reinterpret_cast<uint8_t*>(key.data()),
                  size);
  return key;
}

void Collation::Close::operator()(UCollator* collator) const { ucol_close(collator); }

}  // namespace kestrelon::desktop
