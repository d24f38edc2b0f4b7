// Registering and removing, in the registry of a throw-away Wine prefix.

#include <gtest/gtest.h>

#include <set>

#include "frontends/activex/Registration.h"
#include "frontends/activex/Registry.h"
#include "frontends/activex/TypeLibrary.h"
#include "tests/frontends/activex/ControlModule.h"
// Stands on Win32.h.
#include <sddl.h>

namespace kestrelon {
namespace {

using Entries = std::set<String>;  // "key\name=text", from Classes on, keys in small letters

void Walk(HKEY key, const String& path, Entries& entries) {
  entries.insert(path);
  wchar_t name[512];
  DWORD length = std::size(name);
  std::vector<BYTE> data(1 << 16);
  DWORD size = static_cast<DWORD>(data.size());
  for (DWORD i = 0;
       RegEnumValueW(key, i, name, &length, nullptr, nullptr, data.data(), &size) == ERROR_SUCCESS;
       ++i, length = std::size(name), size = static_cast<DWORD>(data.size())) {
    entries.insert(path + u"\\" + FromWide(name) + u"=" +
                   String(reinterpret_cast<char16_t*>(data.data()), size / sizeof(char16_t)));
  }
  for (DWORD i = 0; RegEnumKeyW(key, i, name, std::size(name)) == ERROR_SUCCESS; ++i) {
    RegistryKey child;
    ASSERT_EQ(child.Open(key, FromWide(name), KEY_READ), ERROR_SUCCESS);
    Walk(child.get(), path + u"\\" + LowerCase(FromWide(name)), entries);
  }
}

Entries Classes(HKEY root) {
  RegistryKey classes;
  Entries entries;
  EXPECT_EQ(classes.Open(root, u"Software\\Classes", KEY_READ), ERROR_SUCCESS);
  Walk(classes.get(), {}, entries);
  return entries;
}

Entries Added(const Entries& before, const Entries& after) {
  Entries added;
  std::set_difference(after.begin(), after.end(), before.begin(), before.end(),
                      std::inserter(added, added.end()));
  return added;
}

void WriteText(HKEY root, const String& key, const String& text) {
  RegistryChanges changes(root);
  EXPECT_EQ(changes.Write(key, {}, text), ERROR_SUCCESS);
  changes.Keep();
}

void CreateKey(HKEY root, const String& path, REGSAM view = 0) {
  EXPECT_EQ(RegistryKey().Create(root, path, KEY_READ | view), ERROR_SUCCESS);
}

// What a user without rights sees of a key of the machine, for the time of a test.
class WithoutRights {
 public:
  explicit WithoutRights(const String& path) {
    EXPECT_EQ(key_.Create(HKEY_LOCAL_MACHINE, path, KEY_ALL_ACCESS), ERROR_SUCCESS);
    SetRights(L"D:P(D;;KA;;;WD)");
  }
  ~WithoutRights() { SetRights(L"D:(A;;KA;;;WD)"); }

 private:
  void SetRights(const wchar_t* text) {
    PSECURITY_DESCRIPTOR rights = nullptr;
    ASSERT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(text, SDDL_REVISION_1, &rights,
                                                                     nullptr));
    EXPECT_EQ(RegSetKeySecurity(key_.get(), DACL_SECURITY_INFORMATION, rights), ERROR_SUCCESS);
    LocalFree(rights);
  }
  RegistryKey key_;
};

constexpr bool kIs64Bit = sizeof(void*) == 8;

const String kClass = u"Software\\Classes\\CLSID\\" + TextOf(kControlClass);
const String kLibrary = u"Software\\Classes\\TypeLib\\" + TextOf(kTypeLibrary);

// Walking the whole of the machine's classes takes its time: it is done around all tests.
class RegistrationTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    ControlModule().Call("DllUnregisterServer");  // of a run that was cut short
    Unregister();
    // A user has these as soon as anything is entered for him; they are the system's, and stay.
    for (const char16_t* key : {u"CLSID", u"TypeLib", u"Interface"}) {
      CreateKey(HKEY_CURRENT_USER, String(u"Software\\Classes\\") + key);
    }
    machine_ = Classes(HKEY_LOCAL_MACHINE);
    user_ = Classes(HKEY_CURRENT_USER);
    ASSERT_GT(machine_.size(), 1000u);
  }
  void TearDown() override { EXPECT_EQ(Classes(HKEY_CURRENT_USER), user_); }
  static void TearDownTestSuite() {
    const Entries left = Classes(HKEY_LOCAL_MACHINE);
    EXPECT_EQ(Added(machine_, left), Entries());
    EXPECT_EQ(Added(left, machine_), Entries());
  }

  static inline Entries machine_;
  static inline Entries user_;
};

TEST_F(RegistrationTest, MakesTheControlKnownByItsName) {
  // Also where the path is not of the user's code page.
  const auto folder = std::filesystem::temp_directory_path() / u"Kestrelon Zo\u00eb \u6f22";
  std::filesystem::create_directories(folder);
  const auto path = folder / "Control.dll";
  std::filesystem::copy_file(BinaryFolder() / "KestrelonControl2005.dll", path,
                             std::filesystem::copy_options::overwrite_existing);
  const ControlModule module(path);
  ASSERT_EQ(module.Call("DllRegisterServer"), S_OK);
  const Entries registered = Classes(HKEY_LOCAL_MACHINE);
  EXPECT_EQ(module.Call("DllRegisterServer"), S_OK);
  EXPECT_EQ(Classes(HKEY_LOCAL_MACHINE), registered);

  CLSID clsid;
  ASSERT_EQ(CLSIDFromProgID(AsWide(String(kProgId)), &clsid), S_OK);
  {
    ComPtr<IDispatch> control;
    EXPECT_EQ(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&control)), S_OK);
    ComPtr<ITypeLib> library;
    EXPECT_EQ(LoadRegTypeLib(kTypeLibrary, 1, 0, LOCALE_NEUTRAL, &library), S_OK);
  }
  const String server = LowerCase(u"\\CLSID\\" + TextOf(kControlClass) + u"\\InprocServer32");
  EXPECT_TRUE(registered.contains(server + String(u"\\ThreadingModel=Apartment\0", 26)));
  for (const String& entry : Added(machine_, registered)) {
    // The categories of controls that are safe for scripting, and for initialising.
    EXPECT_EQ(entry.find(u"7DD95801"), String::npos);
    EXPECT_EQ(entry.find(u"7DD95802"), String::npos);
  }
  EXPECT_EQ(module.Call("DllUnregisterServer"), S_OK);
  EXPECT_EQ(module.Call("DllUnregisterServer"), S_OK);
}

TEST_F(RegistrationTest, EntersTheSameForOneUser) {
  ASSERT_EQ(RegisterFor(Users::kThisOne), S_OK);
  const Entries of_user = Added(user_, Classes(HKEY_CURRENT_USER));
  EXPECT_FALSE(HasRegistryKey(HKEY_LOCAL_MACHINE, kClass));
  ASSERT_EQ(RegisterFor(Users::kAll), S_OK);
  const Entries of_machine = Added(machine_, Classes(HKEY_LOCAL_MACHINE));
  EXPECT_EQ(Added(of_machine, of_user), Entries());
  EXPECT_GT(of_user.size(), 20u);
  EXPECT_EQ(Unregister(), S_OK);
}

TEST_F(RegistrationTest, IsForTheUserAloneWithoutTheRights) {
  {
    const WithoutRights restricted(kLibrary);
    EXPECT_TRUE(HasRegistryKey(HKEY_LOCAL_MACHINE, kLibrary)) << "though it cannot be read";
    ASSERT_EQ(Register(), S_OK);
    EXPECT_FALSE(HasRegistryKey(HKEY_LOCAL_MACHINE, kClass)) << "nothing is left half done";
    EXPECT_TRUE(HasRegistryKey(HKEY_CURRENT_USER, kClass));
  }
  ASSERT_EQ(RegisterFor(Users::kAll), S_OK);
  {
    const WithoutRights restricted(kLibrary + u"\\1.0");
    EXPECT_EQ(Unregister(), E_ACCESSDENIED);
    EXPECT_FALSE(HasRegistryKey(HKEY_CURRENT_USER, kClass));
  }
  EXPECT_EQ(Unregister(), S_OK);
}

TEST_F(RegistrationTest, LeavesWhatBelongsToAnotherFile) {
  ASSERT_EQ(RegisterFor(Users::kThisOne), S_OK);
  const String server = kClass + u"\\InprocServer32";
  WriteText(HKEY_CURRENT_USER, server, (BinaryFolder() / "KestrelonControl2005.dll").u16string());
  const Entries others = Classes(HKEY_CURRENT_USER);
  EXPECT_EQ(Unregister(), S_OK);
  EXPECT_EQ(Classes(HKEY_CURRENT_USER), others);
  // The same file in another spelling, and one that is gone.
  for (const String& path : {UpperCase(ModulePath()), String(u"C:\\moved away\\Control.dll")}) {
    WriteText(HKEY_CURRENT_USER, server, path);
    EXPECT_EQ(Unregister(), S_OK);
    EXPECT_FALSE(HasRegistryKey(HKEY_CURRENT_USER, kClass));
  }
}

TEST_F(RegistrationTest, LeavesWhatTheOtherArchitectureNeeds) {
  BOOL is_on_64_bit = kIs64Bit;
  if (!kIs64Bit) IsWow64Process(GetCurrentProcess(), &is_on_64_bit);
  if (!is_on_64_bit) GTEST_SKIP() << "This system is for one architecture alone";
  const REGSAM other_view = kIs64Bit ? KEY_WOW64_32KEY : KEY_WOW64_64KEY;
  const String other_library = kLibrary + (kIs64Bit ? u"\\1.0\\0\\win32" : u"\\1.0\\0\\win64");
  ASSERT_EQ(RegisterFor(Users::kAll), S_OK);
  WriteText(HKEY_LOCAL_MACHINE, other_library, u"C:\\other.dll");
  CreateKey(HKEY_LOCAL_MACHINE, kClass, other_view);
  EXPECT_EQ(Unregister(), S_OK);
  const String prog_id = u"Software\\Classes\\" + String(kProgId) + u"\\CLSID";
  EXPECT_EQ(ReadRegistryText(HKEY_LOCAL_MACHINE, prog_id), TextOf(kControlClass));
  EXPECT_EQ(ReadRegistryText(HKEY_LOCAL_MACHINE, other_library), u"C:\\other.dll");
  EXPECT_FALSE(HasRegistryKey(HKEY_LOCAL_MACHINE, kClass));

  EXPECT_EQ(RegDeleteKeyExW(HKEY_LOCAL_MACHINE, AsWide(kClass), other_view, 0), ERROR_SUCCESS);
  EXPECT_EQ(DeleteRegistryTree(HKEY_LOCAL_MACHINE, other_library), ERROR_SUCCESS);
  EXPECT_EQ(Unregister(), S_OK);
}

}  // namespace
}  // namespace kestrelon
