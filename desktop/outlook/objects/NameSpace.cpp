#include "desktop/outlook/objects/NameSpace.h"

#include "desktop/outlook/objects/OutlookApplication.h"

namespace kestrelon::desktop {

const MemberTable<NameSpace>& NameSpace::Members() {
  static const MemberTable<NameSpace> table =
      MemberTable<NameSpace>(u"NameSpace")
          .Property(u"Application", &NameSpace::GetApplication)
          .Property(u"Type", &NameSpace::GetType);
  return table;
}

Value NameSpace::GetApplication() { return CreateOutlookApplication(); }

Value NameSpace::GetType() { return u"MAPI"; }

}  // namespace kestrelon::desktop
