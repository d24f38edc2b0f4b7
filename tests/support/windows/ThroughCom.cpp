#include "tests/support/windows/ThroughCom.h"

#include "platform/windows/DispatchClient.h"
#include "platform/windows/DispatchServer.h"
#include "tests/support/ScriptedDesktop.h"

namespace kestrelon::testing {
namespace {

// Runs a call into COM; a failure that stands for a LoopCut becomes one again.
template <typename Action>
auto LettingLoopsBeCut(const ScriptedDesktop& desktop, const Action& action) {
  try {
    return action();
  } catch (const AutomationError&) {
    if (desktop.is_cut()) throw LoopCut();
    throw;
  }
}

Value Wrap(ScriptedDesktop& desktop, const Value& value);

class WalkThroughCom final : public Enumerator {
 public:
  WalkThroughCom(ScriptedDesktop& desktop, std::unique_ptr<Enumerator> walk)
      : desktop_(desktop), walk_(std::move(walk)) {}
  std::optional<Value> Next() override {
    std::optional<Value> element = walk_->Next();
    if (element) element = Wrap(desktop_, *element);
    return element;
  }

 private:
  ScriptedDesktop& desktop_;
  std::unique_ptr<Enumerator> walk_;
};

class ObjectThroughCom final : public DispatchClient {
 public:
  ObjectThroughCom(ScriptedDesktop& desktop, ComPtr<IDispatch> dispatch)
      : DispatchClient(std::move(dispatch)), desktop_(desktop) {}

  Value Invoke(InvokeKind kind, StringView member, const Arguments& arguments) override {
    return LettingLoopsBeCut(
        desktop_, [&] { return Wrap(desktop_, DispatchClient::Invoke(kind, member, arguments)); });
  }
  std::unique_ptr<Enumerator> Enumerate() override {
    return LettingLoopsBeCut(desktop_, [this] {
      return std::make_unique<WalkThroughCom>(desktop_, DispatchClient::Enumerate());
    });
  }

 private:
  ScriptedDesktop& desktop_;
};

Value HandThroughCom(ScriptedDesktop& desktop, const DispatchPointer& object) {
  return Value(DispatchPointer(std::make_shared<ObjectThroughCom>(desktop, DispatchOf(object))));
}

Value Wrap(ScriptedDesktop& desktop, const Value& value) {
  const bool is_object = value.IsObject() && value.AsObject() != nullptr;
  return is_object ? HandThroughCom(desktop, value.AsObject()) : value;
}

}  // namespace

void LeadScriptedObjectsThroughCom() { ScriptedDesktop::hand_over = HandThroughCom; }

}  // namespace kestrelon::testing
