// Base of Word's objects: each belongs to a running Word, most to one of its documents, and refuses
// every call when that is gone: error 462 after Quit, 5825 after the document was closed.
#pragma once

#include <memory>
#include <utility>

#include "desktop/server/Collection.h"
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

template <class Server>
class WordCollection : public Collection<Server, WordObject<Server>> {
 public:
  using Collection<Server, WordObject<Server>>::Collection;

  // Error 5941 for an index that is not there.
  Value Item(const MethodArguments& arguments) {
    const int32_t index = arguments.Require(0).ToLong();
    if (index < 1 || index > this->self().Size()) throw NoSuchMember();
    return this->self().At(index);
  }
};

}  // namespace kestrelon::desktop::word
