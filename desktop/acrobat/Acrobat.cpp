#include "desktop/acrobat/Acrobat.h"

namespace kestrelon::desktop {

Object CreateAcrobatApplication() { throw AutomationError(kCannotCreateObject); }

Object CreateAcrobatDocument() { throw AutomationError(kCannotCreateObject); }

}  // namespace kestrelon::desktop
