// "AcroExch.App" and "AcroExch.AVDoc": HTML pages as PDF documents, made by the converter.
#pragma once

#include "automation/DispatchObject.h"

namespace kestrelon::desktop {

Object CreateAcrobatApplication();
Object CreateAcrobatDocument();

}  // namespace kestrelon::desktop
