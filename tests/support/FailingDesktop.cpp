#include "tests/support/FailingDesktop.h"

namespace kestrelon::testing {
namespace {

Value Wrap(const Value& value, FailurePlan& plan) {
  if (!value.IsObject()) return value;
  return FailByPlan(value.ToObject(), plan);
}

Value Unwrap(const Value& value) {
  if (!value.IsObject() || value.AsObject() == nullptr) return value;
  const DispatchPointer wrapped = value.AsObject()->Wrapped();
  return wrapped ? Value(wrapped) : value;
}

class FailingWalk final : public Enumerator {
 public:
  FailingWalk(std::unique_ptr<Enumerator> walk, FailurePlan& plan)
      : walk_(std::move(walk)), plan_(plan) {}
  std::optional<Value> Next() override {
    plan_.Count();
    std::optional<Value> element = walk_->Next();
    if (element) element = Wrap(*element, plan_);
    return element;
  }

 private:
  std::unique_ptr<Enumerator> walk_;
  FailurePlan& plan_;
};

class FailingObject final : public DispatchObject {
 public:
  FailingObject(DispatchPointer object, FailurePlan& plan)
      : object_(std::move(object)), plan_(plan) {}
  Value Invoke(InvokeKind kind, StringView member, const Arguments& arguments) override {
    plan_.Count();
    Arguments unwrapped;
    for (const Value& value : arguments.positional) unwrapped.Add(Unwrap(value));
    for (const NamedArgument& argument : arguments.named) {
      unwrapped.Add(NamedArgument{argument.name, Unwrap(argument.value)});
    }
    return Wrap(object_->Invoke(kind, member, unwrapped), plan_);
  }
  std::unique_ptr<Enumerator> Enumerate() override {
    plan_.Count();
    return std::make_unique<FailingWalk>(object_->Enumerate(), plan_);
  }
  String TypeName() const override { return object_->TypeName(); }
  DispatchPointer Wrapped() const override { return object_; }

 private:
  DispatchPointer object_;
  FailurePlan& plan_;
};

}  // namespace

void FailurePlan::Count() {
  if (++calls == fail_at) throw AutomationError(1234, u"Injected");
}

Object FailByPlan(const Object& object, FailurePlan& plan) {
  if (object.IsNothing()) return object;
  return Object(std::make_shared<FailingObject>(object.pointer(), plan));
}

Object FailingDesktop::CreateObject(StringView prog_id, StringView server) {
  plan_.Count();
  return FailByPlan(ForwardingPlatform::CreateObject(prog_id, server), plan_);
}

Object FailingDesktop::GetRunningObject(StringView prog_id) {
  plan_.Count();
  return FailByPlan(ForwardingPlatform::GetRunningObject(prog_id), plan_);
}

}  // namespace kestrelon::testing
