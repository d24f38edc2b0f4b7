#include "tests/frontends/activex/StandIns.h"

#include "Control/InterfaceTable.h"
#include "automation/TracingObject.h"
#include "frontends/activex/Registry.h"
#include "platform/windows/ComClass.h"
#include "platform/windows/ComErrors.h"
#include "platform/windows/DispatchServer.h"
#include "tests/frontends/activex/Programs.h"
#include "tests/frontends/activex/ScriptHost.h"

namespace kestrelon::testing {
namespace {

using namespace std::string_literals;

// Mutexes, held by a test that wants the desktop in another program, and by that program.
constexpr const wchar_t* kWanted = L"KestrelonTest.Wanted";
constexpr const wchar_t* kRunning = L"KestrelonTest.Running";

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
  switch (type) {
    case ParameterType::kNone:
      return result.IsEmpty();
    case ParameterType::kString:
      return result.IsString();
    case ParameterType::kBoolean:
      return result.IsBoolean();
    case ParameterType::kInteger:
      return result.IsInteger();
    case ParameterType::kObject:
      return result.IsObject() || result.IsNull();  // JScript's Nothing
    default:
      return true;
  }
}

void SetKey(const String& key, const String& value) {
  const LSTATUS status =
      RegSetKeyValueW(HKEY_CLASSES_ROOT, AsWide(key), nullptr, REG_SZ, AsWide(value),
                      static_cast<DWORD>((value.size() + 1) * sizeof(char16_t)));
  Check(HRESULT_FROM_WIN32(static_cast<DWORD>(status)));
}

}  // namespace

Value ScriptReport::Invoke(InvokeKind /*kind*/, StringView member, const Arguments& arguments) {
  const String name = LowerCase(member);
  if (name == u"equal" && arguments.positional.size() == 3) {
    Equal(arguments);
  } else if (name == u"called" && arguments.positional.size() >= 2) {
    Called(arguments);
  } else if (name == u"done") {
    is_done = true;
  } else {
    throw AutomationError(kMemberNotFound);
  }
  return {};
}

void ScriptReport::Equal(const Arguments& arguments) {
  ++checks;
  const std::string actual = Describe(arguments.positional[1]);
  const std::string expected = Describe(arguments.positional[2]);
  if (actual == expected) return;
  faults.push_back(ToUtf8(arguments.positional[0].ToText()) + " is " + actual + ", not " +
                   expected);
}

void ScriptReport::Called(const Arguments& arguments) {
  ++checks;
  const String name = arguments.positional[0].ToText();
  const Member* member = FindMember(name);
  called.insert(name);
  if (member == nullptr) {
    faults.push_back(ToUtf8(name) + " is no member");
  } else if (!Fits(arguments.positional[1], member->result)) {
    faults.push_back(ToUtf8(name) + " gives " + Describe(arguments.positional[1]));
  }
  if (arguments.positional.size() == 3) Equal(arguments);
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
                           std::function<DispatchPointer()> make)
    : prog_id_(prog_id),
      clsid_{0xA51B9DF7, 0x2D0C, 0x4E5B, {0x93, 0x1E, 0x6A, 0x70, 0x0C, 0x3B, 0x5D, number}} {
  wchar_t program[MAX_PATH];
  GetModuleFileNameW(nullptr, program, MAX_PATH);
  SetKey(prog_id_ + u"\\CLSID", TextOf(clsid_));
  SetKey(u"CLSID\\" + TextOf(clsid_) + u"\\LocalServer32", u"\"" + FromWide(program) + u"\"");
  if (make == nullptr) return;
  const auto factory = MakeComObject<Factory>(std::move(make));
  Check(CoRegisterClassObject(clsid_, factory.Get(), CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER,
                              REGCLS_MULTIPLEUSE, &cookie_));
}

StandInClass::~StandInClass() {
  if (cookie_ != 0) CoRevokeClassObject(cookie_);
  RegDeleteTreeW(HKEY_CLASSES_ROOT, AsWide(prog_id_));
  RegDeleteTreeW(HKEY_CLASSES_ROOT, AsWide(u"CLSID\\" + TextOf(clsid_)));
}

void AddDesktop(StandInClasses& classes, ScriptedDesktop* desktop) {
  uint8_t number = 0;
  const auto add = [&](const String& prog_id, std::function<DispatchPointer()> make) {
    classes.emplace_back(prog_id, ++number, desktop == nullptr ? nullptr : std::move(make));
  };
  for (const String& name : {u"Word.Application"s, u"Outlook.Application"s}) {
    add(name, [desktop, name] { return desktop->CreateObject(name, {}).pointer(); });
  }
  add(u"KestrelonTest.Desktop", [desktop] { return std::make_shared<DesktopDirector>(*desktop); });
}

DesktopServer::DesktopServer() : wanted_(CreateMutexW(nullptr, TRUE, kWanted)) {}

DesktopServer::~DesktopServer() {
  ReleaseMutex(wanted_);
  CloseHandle(wanted_);
  const HANDLE running = OpenMutexW(SYNCHRONIZE, FALSE, kRunning);
  if (running == nullptr) return;
  WaitAnsweringCalls(running);
  CloseHandle(running);
}

void ServeDesktop() {
  CreateMutexW(nullptr, TRUE, kRunning);  // held until this program ends
  const HANDLE wanted = CreateMutexW(nullptr, FALSE, kWanted);
  ScriptedDesktop desktop;
  StandInClasses classes;
  AddDesktop(classes, &desktop);
  WaitAnsweringCalls(wanted);
  ReleaseMutex(wanted);
}

}  // namespace kestrelon::testing
