// Base of Excel's objects: each belongs to a running Excel, most to one of its workbooks, and
// refuses every call when that is gone: error 462 after Quit, a disconnected object after the
// workbook was closed.
#pragma once

#include <memory>
#include <utility>

#include "desktop/excel/ExcelErrors.h"
#include "desktop/excel/Session.h"
#include "desktop/server/Collection.h"

namespace kestrelon::desktop::excel {

// What an object belongs to; keeps all of it alive. The application's own objects have no workbook,
// a workbook's own have no sheet.
struct Owner {
  std::shared_ptr<Session> session;
  std::shared_ptr<OpenWorkbook> workbook;
  std::shared_ptr<Sheet> sheet;

  void RequireUsable() const {
    if (!session->running) throw AutomationError(kServerUnavailable);
    if (workbook != nullptr && workbook->closed()) {
      throw AutomationError(kDisconnected, u"Automation error: the workbook was closed.");
    }
  }
};

template <class Server>
class ExcelObject : public ServerObject<Server> {
 public:
  explicit ExcelObject(Owner owner) : owner_(std::move(owner)) {}

  Value Invoke(InvokeKind kind, StringView member, const Arguments& arguments) override {
    owner_.RequireUsable();
    // `sheet.Cells(1, 2) = "x"` assigns to what the member gives for these arguments.
    if (kind == InvokeKind::kPut && arguments.positional.size() > 1) {
      Arguments indices = arguments;
      indices.positional.pop_back();
      const Value target = ServerObject<Server>::Invoke(InvokeKind::kGet, member, indices);
      target.ToObject().PutDefault(arguments.positional.back());
      return {};
    }
    return ServerObject<Server>::Invoke(kind, member, arguments);
  }

 protected:
  const Owner& owner() const { return owner_; }
  Session& session() const { return *owner_.session; }
  OpenWorkbook& workbook() const { return *owner_.workbook; }
  Sheet& sheet() const { return *owner_.sheet; }

 private:
  Owner owner_;
};

// A collection whose elements have names, which the server's `String NameAt(int32_t)` tells.
template <class Server>
class ExcelCollection : public Collection<Server, ExcelObject<Server>> {
 public:
  using Collection<Server, ExcelObject<Server>>::Collection;

  // By number or by name; error 9 for what is not there.
  Value Item(const MethodArguments& arguments) {
    Server& server = this->self();
    const int32_t size = server.Size();
    const Value& wanted = arguments.Require(0);
    if (!wanted.IsString()) {
      const int32_t index = wanted.ToLong();
      if (index >= 1 && index <= size) return server.At(index);
      throw AutomationError(kSubscriptOutOfRange);
    }
    for (int32_t i = 1; i <= size; ++i) {
      if (EqualIgnoringCase(server.NameAt(i), wanted.AsString())) return server.At(i);
    }
    throw AutomationError(kSubscriptOutOfRange);
  }
};

}  // namespace kestrelon::desktop::excel
