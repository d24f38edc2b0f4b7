#include "frontends/activex/Registration.h"

#include <filesystem>

#include "frontends/activex/EmbeddedObject.h"
#include "frontends/activex/Identifiers.h"
#include "frontends/activex/Registry.h"
#include "frontends/activex/TypeLibrary.h"
#include "platform/windows/ComErrors.h"

namespace kestrelon {
namespace {

// Marshals dispatch interfaces: part of the system.
constexpr StringView kDispatchMarshaller = u"{00020420-0000-0000-C000-000000000046}";
constexpr StringView kControlCategory = u"{40FC6ED4-2438-11CF-A3DB-080036F12502}";
constexpr StringView kLibraryVersion = u"1.0";

constexpr bool kIs64Bit = sizeof(void*) == 8;
constexpr StringView kSystem = kIs64Bit ? u"win64" : u"win32";
// The other architecture.
constexpr StringView kOtherSystem = kIs64Bit ? u"win32" : u"win64";
constexpr REGSAM kOtherView = kIs64Bit ? KEY_WOW64_32KEY : KEY_WOW64_64KEY;

template <typename... Parts>
String Join(const Parts&... parts) {
  String joined;
  (joined.append(parts), ...);
  return joined;
}

HKEY RootOf(Users users) { return users == Users::kAll ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER; }

// Where the entries are, in either root.
struct Places {
  String classes = u"Software\\Classes\\";
  String control = classes + u"CLSID\\" + TextOf(kControlClass);
  String server = control + u"\\InprocServer32";
  String prog_id = Join(classes, kProgId);
  String library = classes + u"TypeLib\\" + TextOf(kTypeLibrary);
  String version = Join(library, u"\\", kLibraryVersion);
  String members = classes + u"Interface\\" + TextOf(kMembersInterface);
  String events = classes + u"Interface\\" + TextOf(kEventsInterface);
};

struct Entry {
  String key;
  String name;
  String text;
};

void AddControl(const Places& places, std::vector<Entry>& entries) {
  const String& control = places.control;
  entries.push_back({control, u"", String(kControlName)});
  entries.push_back({places.server, u"", ModulePath()});
  entries.push_back({places.server, u"ThreadingModel", u"Apartment"});
  entries.push_back({control + u"\\ProgID", u"", String(kProgId)});
  entries.push_back({control + u"\\Version", u"", String(kLibraryVersion)});
  entries.push_back({control + u"\\TypeLib", u"", TextOf(kTypeLibrary)});
  entries.push_back({control + u"\\Control", u"", u""});
  entries.push_back({control + u"\\Programmable", u"", u""});
  entries.push_back({control + u"\\MiscStatus", u"", u"0"});
  entries.push_back(
      {control + u"\\MiscStatus\\1", u"", FromUtf8(std::to_string(EmbeddedObject::kMiscStatus))});
  entries.push_back({Join(control, u"\\Implemented Categories\\", kControlCategory), u"", u""});
  entries.push_back({places.prog_id, u"", String(kControlName)});
  entries.push_back({places.prog_id + u"\\CLSID", u"", TextOf(kControlClass)});
}

void AddInterface(const String& key, StringView name, std::vector<Entry>& entries) {
  entries.push_back({key, u"", String(name)});
  entries.push_back({key + u"\\ProxyStubClsid32", u"", String(kDispatchMarshaller)});
  entries.push_back({key + u"\\TypeLib", u"", TextOf(kTypeLibrary)});
  entries.push_back({key + u"\\TypeLib", u"Version", String(kLibraryVersion)});
}

// What RegisterTypeLib would enter. That enters it for all users only, or into the view of the
// current user over them, and takes nothing back.
void AddTypeLibrary(const Places& places, std::vector<Entry>& entries) {
  const String path = ModulePath();
  entries.push_back({places.version, u"", String(kModuleName)});
  entries.push_back({places.version + u"\\FLAGS", u"", u"0"});
  entries.push_back({places.version + u"\\HELPDIR", u"", path.substr(0, path.rfind(u'\\'))});
  entries.push_back({Join(places.version, u"\\0\\", kSystem), u"", path});
  AddInterface(places.members, u"_KestrelonCtrl2005", entries);
  AddInterface(places.events, u"__KestrelonCtrl2005", entries);
}

// Whether the control is registered with another file than this one. A file that is gone does not
// count, so that a control which was moved can still be removed.
bool BelongsToAnother(HKEY root, const Places& places) {
  const std::filesystem::path registered(ReadRegistryText(root, places.server));
  std::error_code ignored;
  return std::filesystem::exists(registered, ignored) &&
         !std::filesystem::equivalent(registered, ModulePath(), ignored);
}

}  // namespace

HRESULT RegisterFor(Users users) {
  return Guard([&]() -> HRESULT {
    const Places places;
    std::vector<Entry> entries;
    AddControl(places, entries);
    AddTypeLibrary(places, entries);
    RegistryChanges changes(RootOf(users));
    for (const Entry& entry : entries) {
      const LSTATUS status = changes.Write(entry.key, entry.name, entry.text);
      if (status != ERROR_SUCCESS) return HRESULT_FROM_WIN32(status);
    }
    changes.Keep();
    return S_OK;
  });
}

HRESULT UnregisterFor(Users users) {
  return Guard([&]() -> HRESULT {
    const Places places;
    const HKEY root = RootOf(users);
    if (BelongsToAnother(root, places)) return S_OK;
    HRESULT result = S_OK;
    const auto remove = [&](const String& key) {
      const LSTATUS status = DeleteRegistryTree(root, key);
      if (status != ERROR_SUCCESS && SUCCEEDED(result)) result = HRESULT_FROM_WIN32(status);
    };
    remove(places.control);
    remove(places.members);
    remove(places.events);
    // Only now: where both architectures have the same keys, this one's is no sign of the other.
    if (!HasRegistryKey(root, places.control, kOtherView)) remove(places.prog_id);
    const bool has_other = HasRegistryKey(root, Join(places.version, u"\\0\\", kOtherSystem));
    remove(has_other ? Join(places.version, u"\\0\\", kSystem) : places.version);
    DeleteEmptyRegistryKey(root, places.library);
    return result;
  });
}

HRESULT Register() {
  const HRESULT result = RegisterFor(Users::kAll);
  return result == E_ACCESSDENIED ? RegisterFor(Users::kThisOne) : result;
}

HRESULT Unregister() {
  const HRESULT user = UnregisterFor(Users::kThisOne);
  const HRESULT machine = UnregisterFor(Users::kAll);
  return FAILED(machine) ? machine : user;
}

}  // namespace kestrelon
