// "MSXML2.XMLHTTP": requests to web servers. Each is made while `send` is called, asynchronous ones
// too. An answer of any status is one; what it says can be read once it is there, before that is
// error 0x8000000A. Answers over 64 MiB are refused. Errors of the transfer are those of
// desktop/http/Transfer.h.
#pragma once

#include "automation/DispatchObject.h"

namespace kestrelon::desktop {

Object CreateHttpRequest();

}  // namespace kestrelon::desktop
