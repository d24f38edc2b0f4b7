// The last stage of a letter that is mailed.
#pragma once

#include "Control/ObjectState.h"

namespace kestrelon {

struct LetterMail {
  const String& address;
  const String& mode;  // exactly "HTML" for a mail body, anything else for an attachment
  const String& subject;
  const String& temp_path;  // with its trailing separator
};

// Saves the document to a temporary file, quits Word, and displays a mail that carries the letter.
// `step` tells how far it came. Failures are the caller's.
void DisplayLetterMail(ControlContext& context, const Object& wordApp, const Object& document,
                       const LetterMail& letter, String& step);

}  // namespace kestrelon
