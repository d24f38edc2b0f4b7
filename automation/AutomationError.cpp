#include "automation/AutomationError.h"

#include <array>
#include <utility>

#include "automation/Text.h"

namespace kestrelon {
namespace {

struct ClassicError {
  int32_t number;
  std::u16string_view description;
};

constexpr std::array<ClassicError, 25> kClassicErrors = {{
    {kInvalidProcedureCall, u"Invalid procedure call or argument"},
    {kOverflow, u"Overflow"},
    {kOutOfMemory, u"Out of memory"},
    {kSubscriptOutOfRange, u"Subscript out of range"},
    {kArrayLocked, u"This array is fixed or temporarily locked"},
    {kDivisionByZero, u"Division by zero"},
    {kTypeMismatch, u"Type mismatch"},
    {kFileNotFound, u"File not found"},
    {kInputPastEndOfFile, u"Input past end of file"},
    {kPermissionDenied, u"Permission denied"},
    {kPathNotFound, u"Path not found"},
    {kObjectVariableNotSet, u"Object variable or With block variable not set"},
    {kInvalidUseOfNull, u"Invalid use of Null"},
    {kObjectRequired, u"Object required"},
    {kCannotCreateObject, u"ActiveX component can't create object"},
    {kDoesNotSupportAutomation,
     u"Class does not support Automation or does not support expected interface"},
    {kMemberNotFound, u"Object doesn't support this property or method"},
    {kNoNamedArguments, u"Object doesn't support named arguments"},
    {kUnknownLocale, u"Object doesn't support current locale setting"},
    {kNamedArgumentNotFound, u"Named argument not found"},
    {kArgumentNotOptional, u"Argument not optional"},
    {kWrongNumberOfArguments, u"Wrong number of arguments or invalid property assignment"},
    {kNotACollection, u"Object not a collection"},
    {kServerUnavailable, u"The remote server machine does not exist or is unavailable"},
    {kNotImplemented, u"Not implemented"},
}};

std::u16string DescribeNumber(int32_t number) {
  for (const ClassicError& error : kClassicErrors) {
    if (error.number == number) return std::u16string(error.description);
  }
  return u"Automation error";
}

}  // namespace

AutomationError::AutomationError(int32_t number)
    : AutomationError(number, DescribeNumber(number)) {}

AutomationError::AutomationError(int32_t number, std::u16string description)
    : number_(number),
      description_(std::move(description)),
      what_("error " + std::to_string(number_) + ": " + ToUtf8(description_)) {}

}  // namespace kestrelon
