// "MSXML2.XMLHTTP": requests to web servers, over libcurl.
#pragma once

#include "automation/DispatchObject.h"

namespace kestrelon::desktop {

Object CreateHttpRequest();

}  // namespace kestrelon::desktop
