#include "Control/ObjectState.h"

#include <functional>

namespace kestrelon {

void TagTable::Reset(size_t upper_bound) {
  for (std::vector<String>* array : {&Tags, &TagFieldNames, &TagReplacements}) {
    array->assign(upper_bound + 1, String());
  }
}

void TagTable::GrowTo(size_t upper_bound) {
  if (upper_bound < Tags.size()) return;
  for (std::vector<String>* array : {&Tags, &TagFieldNames, &TagReplacements}) {
    array->resize(upper_bound + 1);
  }
}

int32_t TagTable::UpperBound() const {
  if (Tags.empty()) throw AutomationError(kSubscriptOutOfRange);
  return static_cast<int32_t>(Tags.size()) - 1;
}

}  // namespace kestrelon
