// A late-bound object of a COM server, as the control sees it.
#pragma once

#include "automation/DispatchObject.h"
#include "platform/windows/Win32.h"

namespace kestrelon {

class DispatchClient final : public DispatchObject {
 public:
  explicit DispatchClient(ComPtr<IDispatch> dispatch) : dispatch_(std::move(dispatch)) {}

  Value Invoke(InvokeKind kind, StringView member, const Arguments& arguments) override;
  std::unique_ptr<Enumerator> Enumerate() override;
  // The name of its type where the server tells; "Object" otherwise.
  String TypeName() const override;

  IDispatch* dispatch() const { return dispatch_.Get(); }

 private:
  ComPtr<IDispatch> dispatch_;
};

// The object of an interface; Nothing for a null one. Error 430 when it cannot be called
// late-bound.
Object ObjectOf(IUnknown* unknown);

}  // namespace kestrelon
