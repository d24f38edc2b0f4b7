#include "tests/frontends/activex/StandIns.h"

#include "Control/InterfaceTable.h"
#include "automation/TracingObject.h"
#include "platform/windows/ComErrors.h"
#include "platform/windows/DispatchServer.h"

namespace kestrelon::testing {
namespace {

using namespace std::string_literals;

class Factory final : public ComClass<IClassFactory> {
 public:
  explicit Factory(std::function<DispatchPointer()> make) : make_(std::move(make)) {}
  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
    *object = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    return Guard([&] { return DispatchOf(make_())->QueryInterface(iid, object); });
  }
  STDMETHODIMP LockServer(BOOL) override { return S_OK; }

 private:
  NotCounted not_counted_;
  std::function<DispatchPointer()> make_;
};

std::string Describe(const Value& value) {
  Arguments arguments;
  arguments.Add(value);
  return DescribeCall("", arguments);
}

bool Fits(const Value& result, ParameterType type) {
  if (type == ParameterType::kNone) return result.IsEmpty();
  if (type == ParameterType::kString) return result.IsString();
  if (type == ParameterType::kBoolean) return result.IsBoolean();
  if (type == ParameterType::kInteger) return result.IsInteger();
  return type == ParameterType::kVariant || result.IsObject() ||
         result.IsNull();  // JScript's Nothing
}

}  // namespace

DWORD RunProgram(const String& command) {
  std::wstring line = AsWide(command);
  STARTUPINFOW startup{};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION process{};
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                      &process)) {
    throw ErrorOf(HRESULT_FROM_WIN32(GetLastError()));
  }
  while (MsgWaitForMultipleObjects(1, &process.hProcess, FALSE, INFINITE, QS_ALLINPUT) ==
         WAIT_OBJECT_0 + 1) {
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
  }
  DWORD status = 1;
  GetExitCodeProcess(process.hProcess, &status);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return status;
}

Value ScriptReport::Invoke(InvokeKind /*kind*/, StringView member, const Arguments& arguments) {
  const String name = LowerCase(member);
  const auto& values = arguments.positional;
  if (name == u"done") {
    is_done = true;
    return {};
  }
  if ((name != u"equal" && name != u"called") || values.size() < 2) {
    throw AutomationError(kMemberNotFound);
  }
  ++checks;
  const std::string what = ToUtf8(values[0].ToText());
  const std::string actual = Describe(values[1]);
  if (name == u"called") {
    const Member* called_member = FindMember(values[0].ToText());
    called.insert(values[0].ToText());
    if (called_member == nullptr || !Fits(values[1], called_member->result)) {
      faults.push_back(what + " is no member, or not one that gives " + actual);
    }
  }
  if (values.size() == 3 && actual != Describe(values[2])) {
    faults.push_back(what + " is " + actual + ", not " + Describe(values[2]));
  }
  return {};
}

Value DesktopDirector::Invoke(InvokeKind /*kind*/, StringView member, const Arguments& arguments) {
  const String name = LowerCase(member);
  const auto& values = arguments.positional;
  if (name == u"answer" && values.size() >= 2) {
    desktop_.Answer(ToUtf8(values[0].ToText()), {values.begin() + 1, values.end()});
  } else if (name == u"named" && values.size() == 1) {
    return desktop_.NamedObject(ToUtf8(values[0].ToText()));
  } else if (name == u"takelog") {
    std::string lines;
    for (const std::string& line : std::exchange(desktop_.log, {})) {
      if (line.find(" = ") != std::string::npos || line.ends_with(')')) lines += line + "\n";
    }
    return FromUtf8(lines);
  } else {
    throw AutomationError(kMemberNotFound);
  }
  return {};
}

StandInClass::StandInClass(const String& prog_id, uint8_t number,
                           std::function<DispatchPointer()> make) {
  const CLSID clsid = {
      0xA51B9DF7, 0x2D0C, 0x4E5B, {0x93, 0x1E, 0x6A, 0x70, 0x0C, 0x3B, 0x5D, number}};
  const String server = u"CLSID\\" + TextOf(clsid);
  for (const String& key : {prog_id, server}) {
    DeleteRegistryTree(HKEY_CLASSES_ROOT, key);  // of a run that was cut short
  }
  const auto write = [&](const String& key, const String& text) {
    Check(HRESULT_FROM_WIN32(static_cast<DWORD>(entries_.Write(key, {}, text))));
  };
  write(prog_id + u"\\CLSID", TextOf(clsid));
  write(server + u"\\LocalServer32", u"none");  // it runs already
  const auto factory = MakeComObject<Factory>(std::move(make));
  Check(CoRegisterClassObject(clsid, factory.Get(), CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER,
                              REGCLS_MULTIPLEUSE, &cookie_));
}

StandInClass::~StandInClass() { CoRevokeClassObject(cookie_); }

void AddDesktop(StandInClasses& classes, ScriptedDesktop& desktop) {
  uint8_t number = 0;
  for (const String& name : {u"Word.Application"s, u"Outlook.Application"s}) {
    classes.emplace_back(name, ++number,
                         [&, name] { return desktop.CreateObject(name, {}).pointer(); });
  }
  classes.emplace_back(u"KestrelonTest.Desktop", ++number,
                       [&] { return std::make_shared<DesktopDirector>(desktop); });
}

}  // namespace kestrelon::testing
