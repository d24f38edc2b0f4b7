// The processor's floating-point settings while a member works.
#pragma once

#include <cfloat>

namespace kestrelon {

// Sets those that programs usually run with, and the caller's own again at the end. A host may have
// others for its thread: 24 bits of precision, as some drawing libraries set for 32-bit programs,
// which make times of day come out minutes wrong; or traps, which end it at a harmless division.
class UsualFloatingPoint {
 public:
  UsualFloatingPoint()
      : of_caller_(_control87(0, 0)), is_usual_((of_caller_ & kSettings) == kUsual) {
    if (!is_usual_) _control87(kUsual, kSettings);
  }
  UsualFloatingPoint(const UsualFloatingPoint&) = delete;
  UsualFloatingPoint& operator=(const UsualFloatingPoint&) = delete;
  ~UsualFloatingPoint() {
    if (is_usual_) return;
    _clearfp();  // faults of ours shall not trap at the caller's next calculation
    _control87(of_caller_, kSettings);
  }

 private:
  // With 64 bits every type has its own.
  static constexpr bool kHasPrecision = sizeof(void*) == 4;
  static constexpr unsigned kSettings = _MCW_EM | _MCW_RC | (kHasPrecision ? _MCW_PC : 0);
  static constexpr unsigned kUsual = _MCW_EM | _RC_NEAR | (kHasPrecision ? _PC_53 : 0);

  unsigned of_caller_;
  bool is_usual_;  // most hosts; setting them takes longer than a short member
};

}  // namespace kestrelon
