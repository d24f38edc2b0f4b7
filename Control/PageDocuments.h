// The documents that a page hands to a member.
#pragma once

#include "automation/DispatchObject.h"

namespace kestrelon {

// An MSXML2 DOMDocument as the page set it up. Members leave its query language alone: the paths
// that they ask for find the same in XPath and in the older one that such documents may begin with.
struct XmlDocument : Object {
  using Object::Object;
};

// The MSHTML HTMLDocument of the calling page.
struct HtmlDocument : Object {
  using Object::Object;
};

}  // namespace kestrelon
