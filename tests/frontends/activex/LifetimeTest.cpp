// The registered module over many controls. Runs before the scripts, some of whose engines keep its
// class factory for good.

#include <gtest/gtest.h>

#include <thread>

#include "Control/InterfaceTable.h"
#include "platform/windows/DispatchClient.h"
#include "platform/windows/WindowsPlatform.h"
#include "tests/frontends/activex/Calls.h"
#include "tests/frontends/activex/ControlModule.h"
#include "tests/frontends/activex/StandIns.h"

namespace kestrelon::testing {
namespace {

// What this process holds.
struct Holdings {
  DWORD handles = 0;
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
std::string ServerNameWrittenBack(const Object& control, const std::string& address) {
  Variant variable{Value(FromUtf8(address))};
  const auto& client = dynamic_cast<const DispatchClient&>(*control.pointer());
  const auto id = static_cast<DISPID>(FindMember(u"ServerName")->dispid);
  Perform({ByReference(variable)}, {kNewValue}, [&](DISPPARAMS& parameters, auto... rest) {
    return client.dispatch()->Invoke(id, IID_NULL, kEnglish, DISPATCH_PROPERTYPUT, &parameters,
                                     rest...);
  });
  return Described(variable);
}

TEST(Lifetime, AThousandControlsLeaveNothingBehind) {
  ScriptedDesktop desktop;
  StandInClasses classes;
  AddDesktop(classes, desktop);
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
  EXPECT_LE(after.blocks, before.blocks + kTolerance);

  {
    const ControlModule module;
    Object control = CreateControl();
    EXPECT_EQ(module.Call("DllCanUnloadNow"), S_FALSE);
    control.Release();
    EXPECT_EQ(module.Call("DllCanUnloadNow"), S_OK);
  }
  CoFreeUnusedLibrariesEx(0, 0);
  EXPECT_EQ(GetModuleHandleW(L"KestrelonControl2005.dll"), nullptr);
}

TEST(Lifetime, ControlsOfSeveralThreadsKeepTheirOwnState) {
  const auto work = [](int thread, int& right) {
    OleInitialize(nullptr);
    for (int i = 0; i < 100; ++i) {
      const Object control = CreateControl();
      const std::string host = "host" + std::to_string(1000 * thread + i);
      right += ServerNameWrittenBack(control, "http://" + host + "/app") == "8:" + host &&
               control.Call(u"CheckForWord").ToText() == u"False";
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
