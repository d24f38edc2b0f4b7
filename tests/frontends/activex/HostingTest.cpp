// What a host asks of a control that it places, besides calling it.

#include <gtest/gtest.h>

#include <vector>

#include "Control/InterfaceTable.h"
#include "platform/windows/DispatchServer.h"
#include "platform/windows/Variants.h"
#include "tests/frontends/activex/ControlModule.h"

namespace kestrelon {
namespace {

// A client of the control's events, which calls the point again while that lets go of it.
class Sink final : public DispatchObject {
 public:
  Sink(ComPtr<IConnectionPoint> point, int& alive) : point_(std::move(point)), alive_(++alive) {}
  ~Sink() override {
    --alive_;
    EXPECT_EQ(point_->Unadvise(cookie), CONNECT_E_NOCONNECTION);
  }
  Value Invoke(InvokeKind, StringView, const Arguments&) override { return {}; }
  String TypeName() const override { return u"Sink"; }

  DWORD cookie = 0;

 private:
  const ComPtr<IConnectionPoint> point_;
  int& alive_;
};

TEST(Hosting, KeepsSinksUntilTheyAreDisconnected) {
  const ControlModule module;
  auto container = module.MakeControl<IConnectionPointContainer>();
  ComPtr<IEnumConnectionPoints> points;
  ASSERT_EQ(container->EnumConnectionPoints(&points), S_OK);
  ComPtr<IConnectionPoint> point;
  ASSERT_EQ(points->Next(1, &point, nullptr), S_OK);
  ComPtr<IConnectionPoint> found;
  EXPECT_EQ(points->Next(1, &found, nullptr), S_FALSE);
  points.Reset();
  EXPECT_EQ(container->FindConnectionPoint(kMembersInterface, &found), CONNECT_E_NOCONNECTION);
  ASSERT_EQ(container->FindConnectionPoint(kEventsInterface, &found), S_OK);
  EXPECT_EQ(found, point);
  found.Reset();

  int alive = 0;
  DWORD cookies[2];
  for (DWORD& cookie : cookies) {
    const auto sink = std::make_shared<Sink>(point, alive);
    ASSERT_EQ(point->Advise(DispatchOf(sink).Get(), &cookie), S_OK);
    sink->cookie = cookie;
  }
  EXPECT_EQ(point->Advise(module.MakeControl<IOleObject>().Get(), nullptr), E_POINTER);
  ComPtr<IEnumConnections> connections;
  ASSERT_EQ(point->EnumConnections(&connections), S_OK);
  CONNECTDATA data[3];
  ULONG count = 0;
  EXPECT_EQ(connections->Next(3, data, &count), S_FALSE);
  ASSERT_EQ(count, 2u);
  for (ULONG i = 0; i < count; ++i) {
    EXPECT_EQ(data[i].dwCookie, cookies[i]);
    data[i].pUnk->Release();
  }
  connections.Reset();

  EXPECT_EQ(point->Unadvise(cookies[0]), S_OK);
  EXPECT_EQ(point->Unadvise(cookies[0]), CONNECT_E_NOCONNECTION);
  EXPECT_EQ(alive, 1);
  ComPtr<IConnectionPointContainer> asked;
  EXPECT_EQ(point->GetConnectionPointContainer(&asked), S_OK);
  EXPECT_EQ(asked, container);
  asked.Reset();
  container.Reset();  // the point outlives its control
  EXPECT_EQ(point->GetConnectionPointContainer(&asked), E_UNEXPECTED);
  EXPECT_EQ(point->Unadvise(cookies[1]), S_OK);
  EXPECT_EQ(alive, 0);
  EXPECT_EQ(module.Call("DllCanUnloadNow"), S_FALSE);
  point.Reset();
  EXPECT_EQ(module.Call("DllCanUnloadNow"), S_OK);
}

TEST(Hosting, IsPlacedWithoutBeingShown) {
  const ControlModule module;
  const auto object = module.MakeControl<IOleObject>();
  for (const LONG verb : {OLEIVERB_SHOW, OLEIVERB_INPLACEACTIVATE, OLEIVERB_HIDE}) {
    EXPECT_EQ(object->DoVerb(verb, nullptr, nullptr, 0, nullptr, nullptr), S_OK);
  }
  EXPECT_EQ(object->GetMiscStatus(DVASPECT_CONTENT, nullptr), E_POINTER);
  DWORD status = 0;
  EXPECT_EQ(object->GetMiscStatus(DVASPECT_CONTENT, &status), S_OK);
  EXPECT_NE(status & OLEMISC_SETCLIENTSITEFIRST, 0u) << "it is to know the page before its calls";
  EXPECT_EQ(object->Close(OLECLOSE_NOSAVE), S_OK);
  // What a host would ask before it takes over a page's data.
  ComPtr<IPersist> stored;
  EXPECT_EQ(object.As(&stored), E_NOINTERFACE);
  ComPtr<IProvideClassInfo2> description;
  ASSERT_EQ(object.As(&description), S_OK);
  GUID events;
  EXPECT_EQ(description->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &events), S_OK);
  EXPECT_TRUE(IsEqualGUID(events, kEventsInterface));
  ComPtr<ITypeInfo> type;
  EXPECT_EQ(description->GetClassInfo(&type), S_OK);
}

// A host, or another control, that was made with the same compiler brings one along.
TEST(Hosting, FailsInOrderBesideASharedRunTimeLibrary) {
  std::vector<HMODULE> libraries;
  for (const auto& file : std::filesystem::directory_iterator(KESTRELON_RUNTIME)) {
    const auto path = std::filesystem::absolute(file.path()).make_preferred();
    libraries.push_back(LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
    EXPECT_NE(libraries.back(), nullptr) << path;
  }
  EXPECT_EQ(libraries.size(), 2u);
  {
    const ControlModule module;
    const auto control = module.MakeControl<IDispatch>();
    Variant address(Value(u"http://host"));
    DISPID put = DISPID_PROPERTYPUT;
    DISPPARAMS parameters{&address, &put, 1, 1};
    const auto id = static_cast<DISPID>(FindMember(u"ServerName")->dispid);
    EXPECT_EQ(control->Invoke(id, IID_NULL, 0, DISPATCH_PROPERTYPUT, &parameters, nullptr, nullptr,
                              nullptr),
              DISP_E_EXCEPTION);
  }
  for (const HMODULE library : libraries) FreeLibrary(library);
}

TEST(Hosting, HandsOutFactoriesOfItsOwnClassOnly) {
  const ControlModule module;
  ComPtr<IClassFactory> factory;
  EXPECT_EQ(module.GetClassObject(kTypeLibrary, IID_PPV_ARGS(&factory)), CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(module.GetClassObject(kControlClass, IID_IClassFactory, nullptr), E_POINTER);
  ASSERT_EQ(module.GetClassObject(kControlClass, IID_PPV_ARGS(&factory)), S_OK);
  ComPtr<IUnknown> control;
  EXPECT_EQ(factory->CreateInstance(factory.Get(), IID_PPV_ARGS(&control)), CLASS_E_NOAGGREGATION);
  EXPECT_EQ(factory->CreateInstance(nullptr, IID_IPersist, &control), E_NOINTERFACE);
  EXPECT_EQ(factory->CreateInstance(nullptr, kMembersInterface, &control), S_OK);
  control.Reset();
  EXPECT_EQ(module.Call("DllCanUnloadNow"), S_FALSE);
  EXPECT_EQ(factory->LockServer(TRUE), S_OK);
  factory.Reset();
  EXPECT_EQ(module.Call("DllCanUnloadNow"), S_FALSE);
  ASSERT_EQ(module.GetClassObject(kControlClass, IID_PPV_ARGS(&factory)), S_OK);
  EXPECT_EQ(factory->LockServer(FALSE), S_OK);
  factory.Reset();
  EXPECT_EQ(module.Call("DllCanUnloadNow"), S_OK);
}

}  // namespace
}  // namespace kestrelon
