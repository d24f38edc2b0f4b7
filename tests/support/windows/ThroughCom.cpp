#include "tests/support/windows/ThroughCom.h"

#include "platform/windows/DispatchClient.h"
#include "platform/windows/DispatchServer.h"
#include "tests/support/ScriptedDesktop.h"

namespace kestrelon::testing {
namespace {

class ObjectThroughCom final : public DispatchClient {
 public:
  ObjectThroughCom(ScriptedDesktop& desktop, const DispatchPointer& object)
      : DispatchClient(DispatchOf(object)), desktop_(desktop) {}

  Value Invoke(InvokeKind kind, StringView member, const Arguments& arguments) override {
    try {
      const Value answer = DispatchClient::Invoke(kind, member, arguments);
      const bool is_object = answer.IsObject() && answer.AsObject() != nullptr;
      return is_object ? HandOver(desktop_, answer.AsObject()) : answer;
    } catch (const AutomationError&) {
      if (desktop_.is_cut()) throw LoopCut();
      throw;
    }
  }
  static Value HandOver(ScriptedDesktop& desktop, const DispatchPointer& object) {
    return Value(DispatchPointer(std::make_shared<ObjectThroughCom>(desktop, object)));
  }

 private:
  ScriptedDesktop& desktop_;
};

}  // namespace

void LeadScriptedObjectsThroughCom() { ScriptedDesktop::hand_over = ObjectThroughCom::HandOver; }

}  // namespace kestrelon::testing
