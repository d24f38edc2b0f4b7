// Walking the children of XML nodes.
#pragma once

#include "automation/DispatchObject.h"

namespace kestrelon {

// False for comments and processing instructions, which are child nodes too.
bool IsElement(const Object& node);

// Calls `visit` for every element of a node list, in document order.
template <typename Visit>
void ForEachElement(const Object& nodes, const Visit& visit) {
  const int32_t count = nodes.Get(u"length").ToLong();
  for (int32_t i = 0; i < count; ++i) {
    const Object node = nodes.CallChild(u"item", i);
    if (IsElement(node)) visit(node);
  }
}

}  // namespace kestrelon
