// The errors of Word's objects, beside those that the text of a document raises.
#pragma once

#include <cstdint>

#include "automation/AutomationError.h"
#include "automation/Text.h"
#include "desktop/word/document/WordErrors.h"

namespace kestrelon::desktop::word {

enum WordErrorNumber : int32_t {
  kBadParameter = 4120,
  kNoSuchFolder = 4172,
  kCommandFailed = 4198,
  kNoDocumentOpen = 4248,
  kCannotReadTemplate = 5151,
  kFileNotOpened = 5174,
  kEncrypted = 5408,
};

inline AutomationError BadParameter(const String& what) {
  return AutomationError(kBadParameter, u"Bad parameter: " + what);
}

}  // namespace kestrelon::desktop::word
