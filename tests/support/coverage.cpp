// Part of the plug-in where it counts what the tests reach: the counters are written
// at the end of a process, also of one that ends without destructors.

#include <cstdlib>

extern "C" int __llvm_profile_write_file(void);  // NOLINT: the compiler's name

namespace {
const int registered = std::at_quick_exit([] { __llvm_profile_write_file(); });
}
