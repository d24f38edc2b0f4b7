// How the program ends.
#pragma once

#include <stdexcept>

namespace kestrelon::commandline {

enum ExitStatus {
  kSuccess = 0,
  kInternalError = 1,
  kFailed = 1,  // what could not be done was told on stderr
  kBadCommandLine = 2,
  kMemberFailed = 3,  // the member raised an error to its caller
};

// What is wrong with a command line, and what to do about it, in a sentence.
class BadCommandLine : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace kestrelon::commandline
