// The programs of a user's desktop, played over real COM by a scripted desktop, and the objects by
// which a script directs them and tells what it saw.
#pragma once

#include <functional>
#include <list>
#include <set>

#include "platform/windows/Win32.h"
#include "tests/support/ScriptedDesktop.h"

namespace kestrelon::testing {

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

 private:
  void Equal(const Arguments& arguments);
  void Called(const Arguments& arguments);
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

// A class of COM while this lives. It is entered into the registry, for COM to start this program
// when an object is wanted; with `make` this program offers it already.
class StandInClass {
 public:
  StandInClass(const String& prog_id, uint8_t number, std::function<DispatchPointer()> make);
  ~StandInClass();
  StandInClass(const StandInClass&) = delete;
  StandInClass& operator=(const StandInClass&) = delete;

 private:
  const String prog_id_;
  const CLSID clsid_;
  DWORD cookie_ = 0;
};
using StandInClasses = std::list<StandInClass>;

// Adds the classes of the desktop: "Word.Application", "Outlook.Application" and
// "KestrelonTest.Desktop". Without `desktop` it is the one of a DesktopServer.
void AddDesktop(StandInClasses& classes, ScriptedDesktop* desktop);

// While this lives, a program that COM starts for one of the desktop's classes serves them; at the
// end of this it has ended too. Scripts then meet a desktop in another program.
class DesktopServer {
 public:
  DesktopServer();
  ~DesktopServer();
  DesktopServer(const DesktopServer&) = delete;
  DesktopServer& operator=(const DesktopServer&) = delete;

 private:
  HANDLE wanted_;
};
// What that program does.
void ServeDesktop();

}  // namespace kestrelon::testing
