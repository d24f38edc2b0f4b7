// "TAPI.TAPI": the telephony lines that the configuration file names.
#pragma once

#include "automation/DispatchObject.h"

namespace kestrelon::desktop {

Object CreateTapi();

}  // namespace kestrelon::desktop
