// The documents that a page hands to a member.
#pragma once

#include "automation/DispatchObject.h"

namespace kestrelon {

// An MSXML2 DOMDocument.
struct XmlDocument : Object {
  using Object::Object;
};

// The MSHTML HTMLDocument of the calling page.
struct HtmlDocument : Object {
  using Object::Object;
};

}  // namespace kestrelon
