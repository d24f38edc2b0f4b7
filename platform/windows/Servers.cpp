#include <algorithm>
#include <array>

#include "platform/windows/ComErrors.h"
#include "platform/windows/DispatchClient.h"
#include "platform/windows/WindowsPlatform.h"

namespace kestrelon {
namespace {

// A server that is registered and yet cannot be had: its file is gone, knows no such class, is for
// a processor of another width, or its program does not come up.
constexpr std::array<HRESULT, 11> kNotInstalled = {
    CLASS_E_CLASSNOTAVAILABLE,
    CO_E_APPNOTFOUND,
    CO_E_DLLNOTFOUND,
    CO_E_ERRORINDLL,
    CO_E_APPDIDNTREG,
    CO_E_CLASS_CREATE_FAILED,
    __HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND),
    __HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND),
    __HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND),
    __HRESULT_FROM_WIN32(ERROR_PROC_NOT_FOUND),
    __HRESULT_FROM_WIN32(ERROR_BAD_EXE_FORMAT),
};

void CheckCreated(HRESULT result) {
  if (std::count(kNotInstalled.begin(), kNotInstalled.end(), result) != 0) {
    throw AutomationError(kCannotCreateObject);
  }
  if (result == E_NOINTERFACE) throw AutomationError(kDoesNotSupportAutomation);
  Check(result);
}

CLSID ClassOf(StringView prog_id) {
  CLSID clsid{};
  Check(CLSIDFromProgID(AsWide(String(prog_id)), &clsid));
  return clsid;
}

String ThisMachine() {
  std::array<wchar_t, MAX_COMPUTERNAME_LENGTH + 1> name{};
  DWORD size = name.size();
  return GetComputerNameW(name.data(), &size) != FALSE ? FromWide({name.data(), size}) : String();
}

bool IsThisMachine(StringView server) {
  return server == u"." || server == u"127.0.0.1" || server == u"::1" ||
         EqualIgnoringCase(server, u"localhost") || EqualIgnoringCase(server, ThisMachine());
}

HRESULT CreateHere(const CLSID& clsid, ComPtr<IUnknown>& created) {
  return CoCreateInstance(clsid, nullptr, CLSCTX_SERVER, IID_PPV_ARGS(&created));
}

HRESULT CreateAt(const String& server, const CLSID& clsid, ComPtr<IUnknown>& created) {
  COSERVERINFO machine{};
  machine.pwszName = const_cast<wchar_t*>(AsWide(server));
  MULTI_QI wanted{&IID_IUnknown, nullptr, S_OK};
  const HRESULT result =
      CoCreateInstanceEx(clsid, nullptr, CLSCTX_REMOTE_SERVER, &machine, 1, &wanted);
  created.Attach(wanted.pItf);
  return result;
}

// Those that begin with another language than XPath, or whose version may.
bool IsXmlDocument(StringView prog_id) {
  return LowerCase(prog_id).starts_with(u"msxml2.domdocument") ||
         EqualIgnoringCase(prog_id, u"Microsoft.XMLDOM");
}

}  // namespace

Object WindowsPlatform::CreateObject(StringView prog_id, StringView server) {
  const CLSID clsid = ClassOf(prog_id);
  ComPtr<IUnknown> created;
  HRESULT result = E_FAIL;
  if (!server.empty()) result = CreateAt(String(server), clsid, created);
  // The network's way to this machine may be shut where the direct one is open. The other way round
  // it helps against a server that runs with other rights than the page.
  if (FAILED(result) && (server.empty() || IsThisMachine(server))) {
    result = CreateHere(clsid, created);
  }
  CheckCreated(result);
  const Object object = ObjectOf(created.Get());
  if (IsXmlDocument(prog_id)) object.Call(u"setProperty", u"SelectionLanguage", u"XPath");
  return object;
}

Object WindowsPlatform::GetRunningObject(StringView prog_id) {
  ComPtr<IUnknown> running;
  Check(GetActiveObject(ClassOf(prog_id), nullptr, &running));
  return ObjectOf(running.Get());
}

}  // namespace kestrelon
