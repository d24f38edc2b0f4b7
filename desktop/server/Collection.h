// What the collections of the applications' object models have in common.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "desktop/server/ServerObject.h"

namespace kestrelon::desktop {

// A collection counted from 1. `Base` is the application's kind of object, whose `owner()` refuses
// calls when it is gone; the server has `int32_t Size()`, `Value At(int32_t)`, which is asked only
// for what is there, and `Value Item(const MethodArguments&)`.
template <class Server, class Base>
class Collection : public Base {
 public:
  using Base::Base;

  std::unique_ptr<Enumerator> Enumerate() override {
    this->owner().RequireUsable();
    std::vector<Value> items;
    for (int32_t i = 1, size = self().Size(); i <= size; ++i) items.push_back(self().At(i));
    return std::make_unique<VectorEnumerator>(std::move(items));
  }
  Value GetCount() { return self().Size(); }

 protected:
  static MemberTable<Server> CollectionMembers(StringView type_name) {
    return MemberTable<Server>(type_name)
        .Property(u"Count", &Server::GetCount)
        .Method(u"Item", &Server::Item, {u"Index"})
        .Method(u"", &Server::Item, {u"Index"});
  }
  Server& self() { return static_cast<Server&>(*this); }
};

}  // namespace kestrelon::desktop
