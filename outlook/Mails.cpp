#include "outlook/Mails.h"

namespace kestrelon {

Value GenerateEmail(ControlContext&, String&, String&, String&, String&, String&) {
  throw AutomationError(kNotImplemented);
}

bool SendEmail(ControlContext&, String&) { throw AutomationError(kNotImplemented); }

bool SendEmailFull(ControlContext&, String&, String&, String&, String&, String&, String&) {
  throw AutomationError(kNotImplemented);
}

bool SendEmailWithOriginal(ControlContext&, String&, String&, String&, String&, String&, String&) {
  throw AutomationError(kNotImplemented);
}

bool ForwardEmailWithOriginal(ControlContext&, String&, String&, String&, String&, String&,
                              String&) {
  throw AutomationError(kNotImplemented);
}

bool CheckForFolder(ControlContext&, Value&) { throw AutomationError(kNotImplemented); }

String GetRecipientAddress(const String&, const String&, const String&) {
  throw AutomationError(kNotImplemented);
}

String GetMailSubject(const String&, const String&) { throw AutomationError(kNotImplemented); }

}  // namespace kestrelon
