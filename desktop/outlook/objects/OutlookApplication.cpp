#include "desktop/outlook/objects/OutlookApplication.h"

#include "desktop/outlook/objects/DefaultFolders.h"
#include "desktop/outlook/objects/Explorer.h"
#include "desktop/outlook/objects/Item.h"
#include "desktop/outlook/objects/MailItem.h"
#include "desktop/outlook/objects/NameSpace.h"
#include "desktop/outlook/store/UserSession.h"

namespace kestrelon::desktop {
namespace {

Object& Running() {
  static Object application;
  return application;
}

class OutlookApplication final : public ServerObject<OutlookApplication> {
 public:
  static const MemberTable<OutlookApplication>& Members() {
    using Self = OutlookApplication;
    static const MemberTable<Self> table =
        MemberTable<Self>(u"Application")
            .Property(u"Name", &Self::GetName)
            .Property(u"", &Self::GetName)
            .Property(u"Version", &Self::GetVersion)
            .Property(u"Session", &Self::GetSession)
            .Property(u"Explorers", &Self::GetExplorers)
            .Method(u"ActiveExplorer", &Self::ActiveExplorer)
            .Method(u"CreateItem", &Self::CreateItem, {u"ItemType"})
            .Method(u"GetNamespace", &Self::GetNamespace, {u"Type"})
            .Method(u"Quit", &Self::Quit);
    return table;
  }

 private:
  Value GetName() { return u"Outlook"; }
  Value GetVersion() { return u"16.0"; }
  Value GetSession() { return Object(std::make_shared<NameSpace>()); }
  Value GetExplorers() { return Object(std::make_shared<Explorers>()); }
  Value ActiveExplorer(const MethodArguments&) { return Object(std::make_shared<Explorer>()); }

  // An item for the default folder of its kind. OlItemType.
  Value CreateItem(const MethodArguments& arguments) {
    const int32_t type = arguments.Require(0).ToLong();
    const auto kind = static_cast<FolderKind>(type);
    if (kind == FolderKind::kMail) return Object(std::make_shared<MailItem>());
    if (const auto folder = DefaultFolderFor(kind)) {
      return NewItem(type, DefaultFolder(OwnStore(), *folder));
    }
    throw AutomationError(kNotImplemented,
                          u"Outlook items of type " + FromUtf8(std::to_string(type)) +
                              u" cannot be created here; mails (0), appointments (1), contacts "
                              u"(2) and tasks (3) can");
  }

  Value GetNamespace(const MethodArguments& arguments) {
    const String type = arguments.Require(0).ToText();
    if (!EqualIgnoringCase(type, u"MAPI")) {
      throw AutomationError(kInvalidProcedureCall,
                            u"The only namespace is \"MAPI\", not \"" + type + u"\"");
    }
    return GetSession();
  }

  Value Quit(const MethodArguments&) {
    MarkOutlookOpen(false);
    Running().Release();
    return {};
  }
};

}  // namespace

Object CreateOutlookApplication() {
  if (!Running()) Running() = Object(std::make_shared<OutlookApplication>());
  return Running();
}

Object RunningOutlookApplication() {
  if (!Running() && IsOutlookOpen()) return CreateOutlookApplication();
  return Running();
}

}  // namespace kestrelon::desktop
