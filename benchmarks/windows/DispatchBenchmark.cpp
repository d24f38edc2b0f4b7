// Calls of the control through IDispatch: against the same empty call by the system's own
// DispInvoke, and names that are looked up against one another.

#include "Control/InterfaceTable.h"
#include "benchmarks/Timing.h"
#include "benchmarks/windows/DispatchFloor.h"
#include "frontends/activex/ClassFactory.h"
#include "platform/windows/ComErrors.h"
#include "platform/windows/Variants.h"

namespace kestrelon::benchmarks {
namespace {

constexpr int kCalls = 5000;  // in a batch
constexpr int kBatches = 41;  // of each kind, one kind after the other in turn

struct Measured {
  const char* what;
  std::function<void()> action;
  std::vector<double> seconds = {};
  double Nanoseconds() const { return Median(seconds) / kCalls * 1e9; }
};

void Measure(std::vector<Measured>& all) {
  for (int batch = 0; batch < kBatches; ++batch) {
    for (Measured& one : all) {
      one.seconds.push_back(Seconds([&] {
        for (int i = 0; i < kCalls; ++i) one.action();
      }));
    }
  }
  for (const Measured& one : all) std::printf("%-64s %7.0f ns\n", one.what, one.Nanoseconds());
}

String Version(IDispatch& object) {
  DISPPARAMS none{};
  Variant version;
  Check(object.Invoke(kFloorVersion, IID_NULL, 0x0409, DISPATCH_METHOD | DISPATCH_PROPERTYGET,
                      &none, &version, nullptr, nullptr));
  return ValueOf(version).ToText();
}

// Without the cost of looking at the answer.
std::function<void()> CallOf(IDispatch& object) {
  return [&object] {
    DISPPARAMS none{};
    Variant version;
    object.Invoke(kFloorVersion, IID_NULL, 0x0409, DISPATCH_METHOD | DISPATCH_PROPERTYGET, &none,
                  &version, nullptr, nullptr);
  };
}

std::function<void()> LookUp(IDispatch& object, StringView name) {
  return [&object, text = String(name)] {
    LPOLESTR pointer = const_cast<wchar_t*>(AsWide(text));
    DISPID id = 0;
    object.GetIDsOfNames(IID_NULL, &pointer, 1, 0x0409, &id);
  };
}

ComPtr<IDispatch> MakeControl() {
  ComPtr<IDispatch> control;
  Check(MakeComObject<ClassFactory>()->CreateInstance(nullptr, IID_PPV_ARGS(&control)));
  return control;
}

void CompareCalls(IDispatch& control) {
  const ComPtr<IDispatch> floor = MakeDispatchFloor(Version(control));
  if (Version(*floor.Get()) != Version(control)) throw AutomationError(kTypeMismatch);
  std::vector<Measured> calls = {{"GetVersion by DispInvoke", CallOf(*floor.Get())},
                                 {"GetVersion of the control", CallOf(control)}};
  Measure(calls);
  PrintRatio("control / DispInvoke", calls[1].Nanoseconds() / calls[0].Nanoseconds(), 3);
}

// Names of one length, since a longer one takes longer to read.
void CompareNames(IDispatch& control) {
  std::vector<Measured> names = {
      {"id of the first member, NewAppointment", LookUp(control, u"NewAppointment")},
      {"id of a member in the middle, currencyFormat", LookUp(control, u"currencyFormat")},
      {"id of one of the last members, GetTapiDrivers", LookUp(control, u"GetTapiDrivers")},
      {"id of no member, GetTapiDriverz", LookUp(control, u"GetTapiDriverz")}};
  Measure(names);
  double slowest = 0;
  for (const Measured& name : names) slowest = std::max(slowest, name.Nanoseconds());
  PrintRatio("slowest name / first name", slowest / names[0].Nanoseconds(), 1.5);
}

}  // namespace
}  // namespace kestrelon::benchmarks

int main() {
  using namespace kestrelon;
  if (FAILED(OleInitialize(nullptr))) return 2;
  try {
    const ComPtr<IDispatch> control = benchmarks::MakeControl();
    benchmarks::CompareCalls(*control.Get());
    benchmarks::CompareNames(*control.Get());
  } catch (const AutomationError& error) {
    std::printf("The calls could not be measured: %s\n", error.what());
    return 1;
  }
  OleUninitialize();
  return 0;
}
