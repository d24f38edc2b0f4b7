// "AcroExch.App" and "AcroExch.AVDoc": documents as PDF. A PDF is opened as it is, anything else by
// the converter.
//
// There is one Acrobat in this process: all its objects see the same open documents. It runs as
// long as one of them is held; documents that are still open go with it.
#pragma once

#include "automation/DispatchObject.h"

namespace kestrelon::desktop {

// Error 429 without LibreOffice, with what to install in the description.
Object CreateAcrobatApplication();
// A document without content, until it opens a file.
Object CreateAcrobatDocument();

}  // namespace kestrelon::desktop
