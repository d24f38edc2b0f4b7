// The control object: one instance per page, used on one thread.
#pragma once

#include "Control/InterfaceTable.h"

namespace kestrelon {

class KestrelonControl {
 public:
  // The platform must outlive the control.
  explicit KestrelonControl(Platform& platform) : context_{platform} {}

  // Calls a member as Member::invoke describes. AutomationErrors are the script's.
  Value Invoke(const Member& member, std::vector<Value>& values) {
    return member.invoke(context_, values);
  }

 private:
  ControlContext context_;
};

}  // namespace kestrelon
