#include "desktop/outlook/objects/OutlookApplication.h"

#include "desktop/outlook/objects/MailItem.h"
#include "desktop/outlook/objects/NameSpace.h"
#include "desktop/server/ServerObject.h"

namespace kestrelon::desktop {
namespace {

class OutlookApplication final : public ServerObject<OutlookApplication> {
 public:
  static const MemberTable<OutlookApplication>& Members() {
    using Self = OutlookApplication;
    static const MemberTable<Self> table =
        MemberTable<Self>(u"Application")
            .Property(u"Name", &Self::GetName)
            .Property(u"Version", &Self::GetVersion)
            .Method(u"ActiveExplorer", &Self::ActiveExplorer)
            .Method(u"CreateItem", &Self::CreateItem, {u"ItemType"})
            .Method(u"GetNamespace", &Self::GetNamespace, {u"Type"});
    return table;
  }

 private:
  Value GetName() { return u"Outlook"; }
  Value GetVersion() { return u"16.0"; }
  // There is no window.
  Value ActiveExplorer(const MethodArguments&) { return Object(); }

  Value CreateItem(const MethodArguments& arguments) {
    constexpr int32_t kMailItem = 0;
    const int32_t type = arguments.Require(0).ToLong();
    if (type != kMailItem) {
      throw AutomationError(kNotImplemented, u"Outlook items of type " +
                                                 FromUtf8(std::to_string(type)) +
                                                 u" cannot be created here; mails (0) can");
    }
    return Object(std::make_shared<MailItem>());
  }

  Value GetNamespace(const MethodArguments& arguments) {
    const String type = arguments.Require(0).ToText();
    if (!EqualIgnoringCase(type, u"MAPI")) {
      throw AutomationError(kInvalidProcedureCall,
                            u"The only namespace is \"MAPI\", not \"" + type + u"\"");
    }
    return Object(std::make_shared<NameSpace>());
  }
};

Object& Running() {
  static Object application;
  return application;
}

}  // namespace

Object CreateOutlookApplication() {
  if (!Running()) Running() = Object(std::make_shared<OutlookApplication>());
  return Running();
}

Object RunningOutlookApplication() { return Running(); }

}  // namespace kestrelon::desktop
