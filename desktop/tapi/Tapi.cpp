#include "desktop/tapi/Tapi.h"

#include "desktop/server/ServerObject.h"
#include "desktop/tapi/Configuration.h"

namespace kestrelon::desktop {
namespace {

class Address final : public ServerObject<Address> {
 public:
  explicit Address(String name) : name_(std::move(name)) {}

  static const MemberTable<Address>& Members() {
    static const MemberTable<Address> table =
        MemberTable<Address>(u"Address").Property(u"AddressName", &Address::GetAddressName);
    return table;
  }

 private:
  Value GetAddressName() { return name_; }

  const String name_;
};

class Addresses final : public ServerObject<Addresses> {
 public:
  explicit Addresses(const std::vector<String>& names) {
    for (const String& name : names) addresses_.emplace_back(std::make_shared<Address>(name));
  }

  static const MemberTable<Addresses>& Members() {
    static const MemberTable<Addresses> table = MemberTable<Addresses>(u"Addresses")
                                                    .Property(u"Count", &Addresses::GetCount)
                                                    .Method(u"Item", &Addresses::Item, {u"Index"})
                                                    .Method(u"", &Addresses::Item, {u"Index"});
    return table;
  }
  std::unique_ptr<Enumerator> Enumerate() override {
    return std::make_unique<VectorEnumerator>(addresses_);
  }

 private:
  Value GetCount() { return static_cast<int64_t>(addresses_.size()); }
  Value Item(const MethodArguments& arguments) {
    const int32_t index = arguments.Require(0).ToLong();
    if (index < 1 || static_cast<size_t>(index) > addresses_.size()) {
      throw AutomationError(kSubscriptOutOfRange);
    }
    return addresses_[static_cast<size_t>(index) - 1];
  }

  std::vector<Value> addresses_;
};

class Tapi final : public ServerObject<Tapi> {
 public:
  static const MemberTable<Tapi>& Members() {
    static const MemberTable<Tapi> table = MemberTable<Tapi>(u"TAPI")
                                               .Method(u"Initialize", &Tapi::Initialize)
                                               .Property(u"Addresses", &Tapi::GetAddresses)
                                               .Method(u"Shutdown", &Tapi::Shutdown);
    return table;
  }

 private:
  Value Initialize(const MethodArguments&) {
    addresses_ = Object(std::make_shared<Addresses>(ReadConfiguration().lines));
    return {};
  }
  Value GetAddresses() {
    if (addresses_.IsNothing()) {
      throw AutomationError(kInvalidProcedureCall,
                            u"TAPI is not initialized. Call Initialize before asking for lines.");
    }
    return addresses_;
  }
  Value Shutdown(const MethodArguments&) {
    addresses_.Release();
    return {};
  }

  Object addresses_;
};

}  // namespace

Object CreateTapi() { return Object(std::make_shared<Tapi>()); }

}  // namespace kestrelon::desktop
