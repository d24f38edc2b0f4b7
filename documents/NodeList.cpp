#include "documents/NodeList.h"

namespace kestrelon {

bool IsElement(const Object& node) {
  constexpr int32_t kNodeElement = 1;
  return node.Get(u"nodeType").ToLong() == kNodeElement;
}

}  // namespace kestrelon
