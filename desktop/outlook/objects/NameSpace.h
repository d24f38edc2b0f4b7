// The namespace "MAPI": the root of the mailbox.
#pragma once

#include "desktop/server/ServerObject.h"

namespace kestrelon::desktop {

class NameSpace final : public ServerObject<NameSpace> {
 public:
  static const MemberTable<NameSpace>& Members();

 private:
  Value GetApplication();
  Value GetType();
};

}  // namespace kestrelon::desktop
