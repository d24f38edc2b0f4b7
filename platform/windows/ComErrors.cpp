#include "platform/windows/ComErrors.h"

#include <array>

#include "platform/windows/Variants.h"

namespace kestrelon {
namespace {

constexpr HRESULT kRuntimeErrors = static_cast<HRESULT>(0x800A0000);
constexpr uint32_t kRuntimeErrorMask = 0xFFFF0000;

struct KnownFailure {
  HRESULT result;
  int32_t number;
};

// RPC failures of servers that are gone have no names of their own as HRESULTs.
constexpr HRESULT kRpcServerUnavailable = static_cast<HRESULT>(0x800706BA);
constexpr HRESULT kRpcCallFailed = static_cast<HRESULT>(0x800706BE);
constexpr HRESULT kRpcCallFailedBeforeItRan = static_cast<HRESULT>(0x800706BF);

// E_OUTOFMEMORY, E_FAIL and the like are not among them: they are numbers that mail servers report,
// and are compared with as they are. So is 0x80040111, unless it comes from creating an object.
constexpr auto kKnownFailures = std::to_array<KnownFailure>({
    {DISP_E_UNKNOWNINTERFACE, kMemberNotFound},
    {DISP_E_UNKNOWNNAME, kMemberNotFound},
    {DISP_E_MEMBERNOTFOUND, kMemberNotFound},
    {DISP_E_TYPEMISMATCH, kTypeMismatch},
    {DISP_E_BADVARTYPE, kTypeMismatch},
    {DISP_E_OVERFLOW, kOverflow},
    {DISP_E_BADINDEX, kSubscriptOutOfRange},
    {DISP_E_ARRAYISLOCKED, kArrayLocked},
    {DISP_E_DIVBYZERO, kDivisionByZero},
    {DISP_E_UNKNOWNLCID, kUnknownLocale},
    {DISP_E_NONAMEDARGS, kNoNamedArguments},
    {DISP_E_PARAMNOTFOUND, kNamedArgumentNotFound},
    {DISP_E_PARAMNOTOPTIONAL, kArgumentNotOptional},
    {DISP_E_BADPARAMCOUNT, kWrongNumberOfArguments},
    {DISP_E_NOTACOLLECTION, kNotACollection},
    {MK_E_UNAVAILABLE, kCannotCreateObject},
    {CO_E_CLASSSTRING, kCannotCreateObject},
    {CO_E_SERVER_EXEC_FAILURE, kCannotCreateObject},
    {REGDB_E_CLASSNOTREG, kCannotCreateObject},
    {E_NOTIMPL, kNotImplemented},
    {RPC_E_DISCONNECTED, kServerUnavailable},
    {RPC_E_SERVER_DIED, kServerUnavailable},
    {RPC_E_SERVER_DIED_DNE, kServerUnavailable},
    {CO_E_OBJNOTCONNECTED, kServerUnavailable},
    {kRpcServerUnavailable, kServerUnavailable},
    {kRpcCallFailed, kServerUnavailable},
    {kRpcCallFailedBeforeItRan, kServerUnavailable},
});

// The system's words for a failure, without the line break that ends them; "" when it has none.
String SystemText(HRESULT failure) {
  wchar_t text[512];
  DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                static_cast<DWORD>(failure), 0, text, 512, nullptr);
  while (length > 0 && (text[length - 1] == L'\n' || text[length - 1] == L'\r')) --length;
  return FromWide({text, length});
}

AutomationError WithDescription(int32_t number, const String& description) {
  return description.empty() ? AutomationError(number) : AutomationError(number, description);
}

}  // namespace

AutomationError ErrorOf(HRESULT failure) {
  for (const KnownFailure& known : kKnownFailures) {
    if (known.result == failure) return AutomationError(known.number);
  }
  if ((static_cast<uint32_t>(failure) & kRuntimeErrorMask) ==
      static_cast<uint32_t>(kRuntimeErrors)) {
    return AutomationError(failure & 0xFFFF);
  }
  return WithDescription(failure, SystemText(failure));
}

AutomationError ErrorOf(EXCEPINFO& information) {
  if (information.pfnDeferredFillIn != nullptr) information.pfnDeferredFillIn(&information);
  const Bstr source(std::exchange(information.bstrSource, nullptr));
  const Bstr description(std::exchange(information.bstrDescription, nullptr));
  const Bstr help_file(std::exchange(information.bstrHelpFile, nullptr));
  // A server fills in one of the two numbers; a careless one neither.
  const AutomationError plain = information.scode != 0   ? ErrorOf(information.scode)
                                : information.wCode != 0 ? AutomationError(information.wCode)
                                                         : ErrorOf(DISP_E_EXCEPTION);
  return description.text().empty() ? plain
                                    : AutomationError(plain.number(), String(description.text()));
}

HRESULT ScodeOf(int32_t number) { return number < 0 ? number : kRuntimeErrors | (number & 0xFFFF); }

void FillExceptionInfo(const AutomationError& error, StringView source, EXCEPINFO* information) {
  if (information == nullptr) return;
  *information = {};
  Bstr failed_object(source);
  Bstr description(error.description());
  information->scode = ScodeOf(error.number());
  information->bstrSource = failed_object.Detach();
  information->bstrDescription = description.Detach();
}

}  // namespace kestrelon
