// Exceptions of the 32-bit module in a process that has another copy of the compiler's run-time
// library: that of a host, or of another control, which was made with the same compiler.
//
// The compiler's start-up code hands the module's unwind tables to that copy when it finds it. The
// module has its own copy linked in, which then knows of no handler for any exception, and ends the
// process.

#include <cstring>

#include "platform/windows/Win32.h"

// Of the run-time library.
extern "C" {
const void* _Unwind_Find_FDE(void* code, void* bases[3]);
void __register_frame(void* tables);
void __deregister_frame(void* tables);
}

namespace kestrelon {
namespace {

void* FindTables() {
  auto* image = reinterpret_cast<char*>(ThisModule());
  const auto offset = reinterpret_cast<const IMAGE_DOS_HEADER*>(image)->e_lfanew;
  const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(image + offset);
  const IMAGE_SECTION_HEADER* section = IMAGE_FIRST_SECTION(headers);
  for (int left = headers->FileHeader.NumberOfSections; left > 0; --left, ++section) {
    // Names are cut after eight characters.
    if (std::memcmp(section->Name, ".eh_frame", sizeof section->Name) == 0) {
      return image + section->VirtualAddress;
    }
  }
  return nullptr;
}

class UnwindTables {
 public:
  UnwindTables() {
    void* bases[3];
    if (_Unwind_Find_FDE(reinterpret_cast<void*>(&FindTables), bases) != nullptr) return;
    tables_ = FindTables();
    if (tables_ != nullptr) __register_frame(tables_);
  }
  UnwindTables(const UnwindTables&) = delete;
  ~UnwindTables() {
    if (tables_ != nullptr) __deregister_frame(tables_);
  }

 private:
  void* tables_ = nullptr;
};

// Made when the module is loaded.
const UnwindTables tables;

}  // namespace
}  // namespace kestrelon
