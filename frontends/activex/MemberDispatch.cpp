#include "frontends/activex/MemberDispatch.h"

#include <unordered_map>

#include "frontends/activex/CallArguments.h"
#include "frontends/activex/Identifiers.h"
#include "platform/windows/ComErrors.h"

namespace kestrelon {
namespace {

// Names are the same here where FindMember takes them for the same.
struct HashIgnoringCase {
  size_t operator()(StringView name) const {
    uint32_t hash = 2166136261u;  // FNV-1a
    for (const char16_t unit : name) hash = (hash ^ LowerCase(unit)) * 16777619u;
    return hash;
  }
};
struct SameIgnoringCase {
  bool operator()(StringView a, StringView b) const { return EqualIgnoringCase(a, b); }
};

// The interface table by name and by id. Never changes once it is made, so that controls on several
// threads can share it.
struct MemberIndex {
  std::unordered_map<StringView, const Member*, HashIgnoringCase, SameIgnoringCase> by_name;
  std::unordered_map<DISPID, const Member*> by_id;
};

const MemberIndex& Index() {
  static const MemberIndex index = [] {
    MemberIndex made;
    for (const Member& member : InterfaceTable()) {
      made.by_name.emplace(member.name, &member);
      made.by_id.emplace(static_cast<DISPID>(member.dispid), &member);
    }
    return made;
  }();
  return index;
}

StringView NameOf(LPCOLESTR name) {
  return name == nullptr ? StringView() : StringView(reinterpret_cast<const char16_t*>(name));
}

// The member, where it can be called in this way.
const Member* FindCalled(DISPID dispid, WORD flags) {
  const auto found = Index().by_id.find(dispid);
  if (found == Index().by_id.end()) return nullptr;
  const Member* member = found->second;
  const WORD wanted =
      member->kind == MemberKind::kPropertyPut ? DISPATCH_PROPERTYPUT : DISPATCH_METHOD;
  return (flags & wanted) != 0 ? member : nullptr;
}

}  // namespace

HRESULT FindDispatchIds(LPOLESTR* names, UINT count, DISPID* ids) {
  if (count == 0) return S_OK;
  if (names == nullptr || ids == nullptr) return E_POINTER;
  for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
  const auto found = Index().by_name.find(NameOf(names[0]));
  if (found == Index().by_name.end()) return DISP_E_UNKNOWNNAME;
  const Member& member = *found->second;
  ids[0] = static_cast<DISPID>(member.dispid);
  HRESULT result = S_OK;
  for (UINT i = 1; i < count; ++i) {
    const std::optional<size_t> place = FindParameter(member, NameOf(names[i]));
    if (place) {
      ids[i] = static_cast<DISPID>(*place);
    } else {
      result = DISP_E_UNKNOWNNAME;
    }
  }
  return result;
}

HRESULT InvokeMember(KestrelonControl& control, DISPID dispid, LCID locale, WORD flags,
                     DISPPARAMS& parameters, VARIANT* result, EXCEPINFO* exception,
                     UINT* failed_argument) {
  const Member* member = FindCalled(dispid, flags);
  if (member == nullptr) return DISP_E_MEMBERNOTFOUND;
  return CallMember(control, *member, locale, parameters, result, exception, failed_argument);
}

HRESULT CallMember(KestrelonControl& control, const Member& member, LCID locale,
                   DISPPARAMS& parameters, VARIANT* result, EXCEPINFO* exception,
                   UINT* failed_argument) {
  if (result != nullptr) VariantInit(result);
  CallArguments arguments(member, locale, parameters);
  const HRESULT received = arguments.Receive(failed_argument);
  if (FAILED(received)) return received;
  try {
    const Value answer = control.Invoke(member, arguments.values());
    if (result != nullptr) StoreTyped(member.result, answer, *result);
  } catch (const AutomationError& error) {
    arguments.WriteBack();
    FillExceptionInfo(error, kProjectName, exception);
    return DISP_E_EXCEPTION;
  }
  arguments.WriteBack();
  return S_OK;
}

}  // namespace kestrelon
