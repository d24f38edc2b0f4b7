// The one exception type of the control: a failed automation call or run-time operation.
//
// Numbers and texts are the classic ones of the scripting run-time. HRESULTs of the form 0x800Axxxx
// are the run-time error xxxx; any other HRESULT keeps its signed 32-bit number.
#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace kestrelon {

enum ErrorNumber : int32_t {
  kInvalidProcedureCall = 5,
  kOverflow = 6,
  kOutOfMemory = 7,
  kSubscriptOutOfRange = 9,
  kArrayLocked = 10,
  kDivisionByZero = 11,
  kTypeMismatch = 13,
  kFileNotFound = 53,
  kInputPastEndOfFile = 62,
  kPermissionDenied = 70,
  kPathNotFound = 76,
  kObjectVariableNotSet = 91,
  kInvalidUseOfNull = 94,
  kObjectRequired = 424,
  kCannotCreateObject = 429,
  kDoesNotSupportAutomation = 430,
  kMemberNotFound = 438,
  kNoNamedArguments = 446,
  kUnknownLocale = 447,
  kNamedArgumentNotFound = 448,
  kArgumentNotOptional = 449,
  kWrongNumberOfArguments = 450,
  kNotACollection = 451,
  kServerUnavailable = 462,
  kNotImplemented = static_cast<int32_t>(0x80004001),
};

class AutomationError : public std::exception {
 public:
  // The description of a classic number is its classic text; of any other, "Automation error".
  explicit AutomationError(int32_t number);
  AutomationError(int32_t number, std::u16string description);

  int32_t number() const { return number_; }
  const std::u16string& description() const { return description_; }
  // "error NUMBER: DESCRIPTION" in UTF-8.
  const char* what() const noexcept override { return what_.c_str(); }

 private:
  int32_t number_;
  std::u16string description_;
  std::string what_;
};

// "Ignore failures from here on": runs the steps in order, each one whatever became of the others.
// Returns the last failure, as the run-time's error object would hold it.
template <typename... Steps>
std::optional<AutomationError> IgnoreFailures(Steps&&... steps) {
  std::optional<AutomationError> last;
  const auto run = [&last](auto& step) {
    try {
      step();
    } catch (const AutomationError& error) {
      last = error;
    }
  };
  (run(steps), ...);
  return last;
}

}  // namespace kestrelon
