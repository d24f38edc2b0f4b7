// The registered module over many controls. Runs before the scripts, some of whose engines keep its
// class factory for good.

#include <gtest/gtest.h>

#include <thread>

#include "Control/InterfaceTable.h"
#include "platform/windows/ComErrors.h"
#include "platform/windows/DispatchClient.h"
#include "platform/windows/Variants.h"
#include "platform/windows/WindowsPlatform.h"
#include "tests/frontends/activex/StandIns.h"

namespace kestrelon::testing {
namespace {

constexpr const wchar_t* kModuleFile = L"KestrelonControl2005.dll";

// What this process holds.
struct Holdings {
  DWORD handles = 0;
  // Both are always 0 under Wine.
  DWORD drawing_objects = 0;
  DWORD user_objects = 0;
  int64_t blocks = 0;  // of all heaps
};

Holdings Count() {
  Holdings holdings;
  GetProcessHandleCount(GetCurrentProcess(), &holdings.handles);
  if (holdings.handles == 0) {
    // Wine does not count them. It gives a new one the lowest number that is free.
    const HANDLE next = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    holdings.handles = static_cast<DWORD>(reinterpret_cast<uintptr_t>(next) / 4);
    CloseHandle(next);
  }
  holdings.drawing_objects = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
  holdings.user_objects = GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS);
  HANDLE heaps[64];
  const DWORD count = std::min<DWORD>(GetProcessHeaps(64, heaps), 64);
  for (DWORD i = 0; i < count; ++i) {
    HeapLock(heaps[i]);
    PROCESS_HEAP_ENTRY entry{};
    while (HeapWalk(heaps[i], &entry)) {
      if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) ++holdings.blocks;
    }
    HeapUnlock(heaps[i]);
  }
  return holdings;
}

Object CreateControl() {
  WindowsPlatform platform([] { return HWND(); });
  return platform.CreateObject(u"KNControl2005.KestrelonCtrl2005", {});
}

// What a script's variable holds when it was put as the server name.
String ServerNameWrittenBack(const Object& control, const String& address) {
  Variant variable{Value(address)};
  VARIANT reference{};
  reference.vt = VT_BYREF | VT_VARIANT;
  reference.pvarVal = &variable;
  DISPID put = DISPID_PROPERTYPUT;
  DISPPARAMS parameters = {&reference, &put, 1, 1};
  const auto& client = dynamic_cast<const DispatchClient&>(*control.pointer());
  const auto id = static_cast<DISPID>(FindMember(u"ServerName")->dispid);
  Check(client.dispatch()->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYPUT,
                                  &parameters, nullptr, nullptr, nullptr));
  return ValueOf(variable).ToText();
}

TEST(Lifetime, AThousandControlsLeaveNothingBehind) {
  ScriptedDesktop desktop;
  StandInClasses classes;
  AddDesktop(classes, &desktop);
  const auto run = [&](int rounds) {
    for (int i = 0; i < rounds; ++i) {
      const Object control = CreateControl();
      control.Put(u"ServerName", u"http://server/app");
      EXPECT_EQ(control.Call(u"NewAppointment", u"1", u"server", u"crm").ToText(), u"");
      EXPECT_THROW(control.Call(u"AddContact", u"1", u"Last", u"", u"Account"), AutomationError);
      EXPECT_FALSE(control.Call(u"AddUpdateContactXML", u"<record/>", true, true).ToBoolean());
      desktop.log.clear();
    }
  };
  run(100);  // fills the caches of COM and of the system
  const Holdings before = Count();
  run(1000);
  const Holdings after = Count();
  // What one round leaves behind is a thousand things by now; a few are the system's own doing.
  constexpr int kTolerance = 20;
  EXPECT_LE(after.handles, before.handles + kTolerance);
  EXPECT_LE(after.drawing_objects, before.drawing_objects + kTolerance);
  EXPECT_LE(after.user_objects, before.user_objects + kTolerance);
  EXPECT_LE(after.blocks, before.blocks + kTolerance);

  const HMODULE module = GetModuleHandleW(kModuleFile);
  ASSERT_NE(module, nullptr);
  const auto can_unload = reinterpret_cast<HRESULT(STDMETHODCALLTYPE*)()>(
      reinterpret_cast<void*>(GetProcAddress(module, "DllCanUnloadNow")));
  Object control = CreateControl();
  EXPECT_EQ(can_unload(), S_FALSE);
  control.Release();
  EXPECT_EQ(can_unload(), S_OK);
  CoFreeUnusedLibrariesEx(0, 0);
  EXPECT_EQ(GetModuleHandleW(kModuleFile), nullptr);
}

TEST(Lifetime, ControlsOfSeveralThreadsKeepTheirOwnState) {
  const auto work = [](int thread, int& right) {
    OleInitialize(nullptr);
    for (int i = 0; i < 100; ++i) {
      const Object control = CreateControl();
      const String number = FromUtf8(std::to_string(1000 * thread + i));
      const String written = ServerNameWrittenBack(control, u"http://host" + number + u"/app");
      right += written == u"host" + number && control.Call(u"CheckForWord").ToText() == u"False";
    }
    OleUninitialize();
  };
  int right[4] = {};
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) threads.emplace_back(work, i, std::ref(right[i]));
  for (std::thread& thread : threads) thread.join();
  for (const int count : right) EXPECT_EQ(count, 100);
}

}  // namespace
}  // namespace kestrelon::testing
