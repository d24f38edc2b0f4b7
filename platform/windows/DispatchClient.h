// A late-bound object of a COM server, as the control sees it.
#pragma once

#include <map>

#include "automation/DispatchObject.h"
#include "platform/windows/Win32.h"

namespace kestrelon {

// While the server works, this thread may serve other calls, and one of those may let go of the
// very client that waits: no method touches its members once the server has been called.
class DispatchClient : public DispatchObject {
 public:
  using MemberIds = std::map<String, DISPID>;

  explicit DispatchClient(ComPtr<IDispatch> dispatch) : dispatch_(std::move(dispatch)) {}

  Value Invoke(InvokeKind kind, StringView member, const Arguments& arguments) override;
  std::unique_ptr<Enumerator> Enumerate() override;
  // The name of its type where the server tells; "Object" otherwise.
  String TypeName() const override;

  IDispatch* dispatch() const { return dispatch_.Get(); }

 private:
  ComPtr<IDispatch> dispatch_;
  // Known from earlier calls: to ask a server in another process costs as much as to call it. Ids
  // last as long as the object.
  std::shared_ptr<MemberIds> ids_ = std::make_shared<MemberIds>();
};

// The object of an interface; Nothing for a null one. Error 430 when it cannot be called
// late-bound.
Object ObjectOf(IUnknown* unknown);
Object ObjectOf(IDispatch* dispatch);

}  // namespace kestrelon
