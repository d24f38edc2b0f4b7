#include "automation/DispatchObject.h"

namespace kestrelon {

std::unique_ptr<Enumerator> DispatchObject::Enumerate() { throw AutomationError(kNotACollection); }

std::unique_ptr<Enumerator> Object::Enumerate() const { return Require().Enumerate(); }

DispatchObject& Object::Require() const {
  if (pointer_ == nullptr) throw AutomationError(kObjectVariableNotSet);
  return *pointer_;
}

}  // namespace kestrelon
