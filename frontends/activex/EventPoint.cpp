#include "frontends/activex/EventPoint.h"

#include <algorithm>
#include <vector>

#include "frontends/activex/Identifiers.h"
#include "platform/windows/ComErrors.h"

namespace kestrelon {
namespace {

struct HeldPoint {
  ComPtr<IConnectionPoint> point;
  void CopyTo(IConnectionPoint*& copy) const { point.CopyTo(&copy); }
};

struct HeldConnection {
  ComPtr<IDispatch> sink;
  DWORD cookie;
  void CopyTo(CONNECTDATA& copy) const {
    copy.pUnk = ComPtr<IDispatch>(sink).Detach();
    copy.dwCookie = cookie;
  }
};

// An enumeration of what `Held` holds, handed out as `Item`.
template <typename Interface, typename Held, typename Item>
class Enumeration final : public ComClass<Interface> {
 public:
  explicit Enumeration(std::vector<Held> all, size_t next = 0)
      : all_(std::move(all)), next_(next) {}

  STDMETHODIMP Next(ULONG count, Item* items, ULONG* fetched) override {
    if (fetched != nullptr) *fetched = 0;
    if (items == nullptr || (fetched == nullptr && count != 1)) return E_POINTER;
    const size_t given = std::min<size_t>(count, all_.size() - next_);
    for (size_t i = 0; i < given; ++i) all_[next_++].CopyTo(items[i]);
    if (fetched != nullptr) *fetched = static_cast<ULONG>(given);
    return given == count ? S_OK : S_FALSE;
  }
  STDMETHODIMP Skip(ULONG count) override {
    const size_t skipped = std::min<size_t>(count, all_.size() - next_);
    next_ += skipped;
    return skipped == count ? S_OK : S_FALSE;
  }
  STDMETHODIMP Reset() override {
    next_ = 0;
    return S_OK;
  }
  STDMETHODIMP Clone(Interface** clone) override {
    if (clone == nullptr) return E_POINTER;
    *clone = nullptr;
    return Guard([&] {
      *clone = MakeComObject<Enumeration>(all_, next_).Detach();
      return S_OK;
    });
  }

 private:
  const std::vector<Held> all_;
  size_t next_;
};

}  // namespace

STDMETHODIMP EventPoint::GetConnectionInterface(IID* iid) {
  if (iid == nullptr) return E_POINTER;
  *iid = kEventsInterface;
  return S_OK;
}

STDMETHODIMP EventPoint::GetConnectionPointContainer(IConnectionPointContainer** container) {
  if (container == nullptr) return E_POINTER;
  *container = container_;
  if (container_ == nullptr) return E_UNEXPECTED;
  container_->AddRef();
  return S_OK;
}

STDMETHODIMP EventPoint::Advise(IUnknown* sink, DWORD* cookie) {
  if (cookie == nullptr) return E_POINTER;
  *cookie = 0;
  if (sink == nullptr) return E_POINTER;
  return Guard([&]() -> HRESULT {
    ComPtr<IDispatch> events;
    if (FAILED(sink->QueryInterface(kEventsInterface,
                                    reinterpret_cast<void**>(events.GetAddressOf()))) &&
        FAILED(sink->QueryInterface(IID_PPV_ARGS(&events)))) {
      return CONNECT_E_CANNOTCONNECT;
    }
    sinks_.emplace(++last_cookie_, std::move(events));
    *cookie = last_cookie_;
    return S_OK;
  });
}

STDMETHODIMP EventPoint::Unadvise(DWORD cookie) {
  // Taken out before it is released: a sink may call back as it goes.
  const auto sink = sinks_.extract(cookie);
  return sink.empty() ? CONNECT_E_NOCONNECTION : S_OK;
}

STDMETHODIMP EventPoint::EnumConnections(IEnumConnections** connections) {
  if (connections == nullptr) return E_POINTER;
  *connections = nullptr;
  return Guard([&] {
    std::vector<HeldConnection> held;
    for (const auto& [cookie, sink] : sinks_) held.push_back({sink, cookie});
    *connections =
        MakeComObject<Enumeration<IEnumConnections, HeldConnection, CONNECTDATA>>(std::move(held))
            .Detach();
    return S_OK;
  });
}

HRESULT EnumeratePoint(IConnectionPoint* point, IEnumConnectionPoints** points) {
  if (points == nullptr) return E_POINTER;
  *points = nullptr;
  return Guard([&] {
    std::vector<HeldPoint> held = {{point}};
    *points = MakeComObject<Enumeration<IEnumConnectionPoints, HeldPoint, IConnectionPoint*>>(
                  std::move(held))
                  .Detach();
    return S_OK;
  });
}

}  // namespace kestrelon
