#include "tests/frontends/activex/Programs.h"

#include "platform/windows/ComErrors.h"

namespace kestrelon::testing {

void WaitAnsweringCalls(HANDLE object) {
  while (MsgWaitForMultipleObjects(1, &object, FALSE, INFINITE, QS_ALLINPUT) == WAIT_OBJECT_0 + 1) {
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
  }
}

DWORD RunProgram(const String& command) {
  std::wstring line = AsWide(command);
  STARTUPINFOW startup{};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION process{};
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                      &process)) {
    throw ErrorOf(HRESULT_FROM_WIN32(GetLastError()));
  }
  WaitAnsweringCalls(process.hProcess);
  DWORD status = 1;
  GetExitCodeProcess(process.hProcess, &status);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return status;
}

String FullPath(const std::string& path) {
  wchar_t full[MAX_PATH] = L"";
  GetFullPathNameW(AsWide(FromUtf8(path)), MAX_PATH, full, nullptr);
  return FromWide(full);
}

void RegisteredModule::SetUp() {
  ASSERT_EQ(RunProgram(u"regsvr32 /s \"" + FullPath(KESTRELON_MODULE) + u"\""), 0u);
}

void RegisteredModule::TearDown() {
  EXPECT_EQ(RunProgram(u"regsvr32 /u /s \"" + FullPath(KESTRELON_MODULE) + u"\""), 0u);
}

}  // namespace kestrelon::testing
