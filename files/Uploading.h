// Sending files to the web server.
#pragma once

#include "Control/ObjectState.h"

namespace kestrelon {

// Puts the text of a file into the web folder ImportDirectory, under the file's own name. True when
// the server answered, whatever it did; False for an empty or unreadable file and where no answer
// came, or none that was whole.
bool UploadFile(ControlContext& context, String& filePath, String& ImportDirectory);

}  // namespace kestrelon
