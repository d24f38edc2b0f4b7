// Base of Word's objects: each belongs to a running Word, most to one of its documents, and refuses
// every call when that is gone: error 462 after Quit, 5825 after the document was closed.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "desktop/server/ServerObject.h"
#include "desktop/word/objects/Session.h"
#include "desktop/word/objects/WordErrors.h"

namespace kestrelon::desktop::word {

// What an object belongs to; keeps both alive. `document` is null for the application's own
// objects.
struct Owner {
  std::shared_ptr<Session> session;
  std::shared_ptr<OpenDocument> document;

  void RequireUsable() const {
    if (!session->running) throw AutomationError(kServerUnavailable);
    if (document != nullptr && document->closed()) throw ObjectDeleted();
  }
};

template <class Server>
class WordObject : public ServerObject<Server> {
 public:
  explicit WordObject(Owner owner) : owner_(std::move(owner)) {}

  Value Invoke(InvokeKind kind, StringView member, const Arguments& arguments) override {
    owner_.RequireUsable();
    return ServerObject<Server>::Invoke(kind, member, arguments);
  }

 protected:
  const Owner& owner() const { return owner_; }
  OpenDocument& document() const { return *owner_.document; }

 private:
  Owner owner_;
};

template <class Server, typename... Args>
Value MakeObject(Args&&... args) {
  return Value(DispatchPointer(std::make_shared<Server>(std::forward<Args>(args)...)));
}

// A collection counted from 1. The server has `int32_t Size()` and `Value At(int32_t)`.
template <class Server>
class WordCollection : public WordObject<Server> {
 public:
  using WordObject<Server>::WordObject;

  std::unique_ptr<Enumerator> Enumerate() override {
    this->owner().RequireUsable();
    auto& server = static_cast<Server&>(*this);
    std::vector<Value> items;
    for (int32_t i = 1, size = server.Size(); i <= size; ++i) items.push_back(server.At(i));
    return std::make_unique<VectorEnumerator>(std::move(items));
  }

 protected:
  static MemberTable<Server> CollectionMembers(StringView type_name) {
    return MemberTable<Server>(type_name)
        .Property(u"Count", &Server::GetCount)
        .Method(u"Item", &Server::Item, {u"Index"})
        .Method(u"", &Server::Item, {u"Index"});
  }

 public:
  Value GetCount() { return static_cast<Server&>(*this).Size(); }
  // Error 5941 for an index that is not there.
  Value Item(const MethodArguments& arguments) {
    auto& server = static_cast<Server&>(*this);
    const int32_t index = arguments.Require(0).ToLong();
    if (index < 1 || index > server.Size()) throw NoSuchMember();
    return server.At(index);
  }
};

}  // namespace kestrelon::desktop::word
