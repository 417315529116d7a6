// Memory between pages that cannot be accessed.
#pragma once

#include <cstdint>

namespace host {

/// From now on every block of the C library's ends where an inaccessible page
/// begins, and is inaccessible itself once it is freed: one byte too many, or one
/// too late, ends the process. For processes of a few thousand blocks. The address
/// sanitizer does the same by its own means; nothing changes under it.
void fenceMemory();

/// From now on new blocks are as usual, which takes less time, until fenceMemory is called
/// again.
void stopFencing();

/// From now on the allocation of that number fails, counted from 1; 0: none. Never under
/// the address sanitizer.
void failAllocation(int32_t number);

}  // namespace host
