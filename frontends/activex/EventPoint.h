// Where a host connects to the control's events. There are none, so nothing is ever fired; yet
// hosts connect to every control that they place, and are right to find a place for it.
#pragma once

#include <map>

#include "platform/windows/ComClass.h"

namespace kestrelon {

// The connection point of `__KestrelonCtrl2005`. Its container, which must outlive it or else say
// Disconnect, holds it; a host may hold it longer.
class EventPoint final : public ComClass<IConnectionPoint> {
 public:
  explicit EventPoint(IConnectionPointContainer& container) : container_(&container) {}

  // Forgets the container, which goes.
  void Disconnect() { container_ = nullptr; }

  STDMETHODIMP GetConnectionInterface(IID* iid) override;
  STDMETHODIMP GetConnectionPointContainer(IConnectionPointContainer** container) override;
  // A sink answers the interface of the events or IDispatch; otherwise CONNECT_E_CANNOTCONNECT.
  STDMETHODIMP Advise(IUnknown* sink, DWORD* cookie) override;
  STDMETHODIMP Unadvise(DWORD cookie) override;
  // The sinks connected now, whatever becomes of them while they are enumerated.
  STDMETHODIMP EnumConnections(IEnumConnections** connections) override;

 private:
  IConnectionPointContainer* container_;
  std::map<DWORD, ComPtr<IDispatch>> sinks_;
  DWORD last_cookie_ = 0;
};

// An enumeration of one connection point.
HRESULT EnumeratePoint(IConnectionPoint* point, IEnumConnectionPoints** points);

}  // namespace kestrelon
