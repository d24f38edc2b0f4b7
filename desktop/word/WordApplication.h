// "Word.Application" of this desktop.
#pragma once

#include "automation/DispatchObject.h"

namespace kestrelon::desktop {

// A new Word of its own, without documents, invisible. It lives as long as anything of it is held;
// after Quit all of it answers with error 462.
Object CreateWordApplication();

}  // namespace kestrelon::desktop
