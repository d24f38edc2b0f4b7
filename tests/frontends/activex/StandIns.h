// The programs of a user's desktop, played over real COM by a scripted desktop, and the objects by
// which a script directs them and tells what it saw.
#pragma once

#include <functional>
#include <list>
#include <set>

#include "frontends/activex/Registry.h"
#include "platform/windows/ComClass.h"
#include "tests/support/ScriptedDesktop.h"

namespace kestrelon::testing {

// Exit status of a program, when it has ended; calls from it are answered meanwhile.
DWORD RunProgram(const String& command);

// Part of an object that may outlive the tests: some script engines keep references for good to
// class factories (JScript of Wine) or to the site that they give to objects (its VBScript).
struct NotCounted {
  NotCounted() { --live_objects; }
  ~NotCounted() { ++live_objects; }
};

enum class Language { kJScript, kVBScript };

// Runs the texts one after the other as one script with the global object `host`, in this thread
// and through the system's engine, as a browser does. `page` leads to the page it stands on (a
// service provider); null for no page. What went wrong, with the number of the line within its
// text, "" for nothing: "line 3: Object required".
String RunScript(Language language, const ComPtr<IDispatch>& host, const ComPtr<IUnknown>& page,
                 const std::vector<String>& texts);

// The object `host` of a script:
//
//   host.Equal(what, actual, expected)   type and value are the same
//   host.Called(member, result[, value]) a member of the control gave a result of its type, and
//                                        that value
//   host.Done()                          the script has come to its end
class ScriptReport final : public DispatchObject {
 public:
  Value Invoke(InvokeKind kind, StringView member, const Arguments& arguments) override;
  String TypeName() const override { return u"ScriptReport"; }

  std::vector<std::string> faults;
  std::set<String> called;
  int checks = 0;
  bool is_done = false;
};

// The object "KestrelonTest.Desktop":
//
//   desktop.Answer(line, value, …)   answers a call, as ScriptedDesktop does
//   desktop.Named(path)              an object of that path, for an answer
//   desktop.TakeLog()                what was put, and the methods that were called, a line each,
//                                    since the last time
class DesktopDirector final : public DispatchObject {
 public:
  explicit DesktopDirector(ScriptedDesktop& desktop) : desktop_(desktop) {}
  Value Invoke(InvokeKind kind, StringView member, const Arguments& arguments) override;
  String TypeName() const override { return u"DesktopDirector"; }

 private:
  ScriptedDesktop& desktop_;
};

// A class of COM while this lives: `make` makes its objects, in this program. It is entered into
// the registry too, for other programs to find it.
class StandInClass {
 public:
  StandInClass(const String& prog_id, uint8_t number, std::function<DispatchPointer()> make);
  StandInClass(const StandInClass&) = delete;
  ~StandInClass();

 private:
  RegistryChanges entries_{HKEY_CLASSES_ROOT};
  DWORD cookie_ = 0;
};
using StandInClasses = std::list<StandInClass>;

// Adds the classes of the desktop: "Word.Application", "Outlook.Application" and
// "KestrelonTest.Desktop".
void AddDesktop(StandInClasses& classes, ScriptedDesktop& desktop);

}  // namespace kestrelon::testing
