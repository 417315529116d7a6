// Which pixel path has worked, remembered for the life of the process.
#pragma once

#include <cstdint>

namespace qrz {

/// 0 until the first picture has settled it, then 1 or 2 for good: the
/// accessors of the other path refuse at once.
enum class RepresentationLatch : int32_t { Unknown = 0, GWorldPath = 1, RowTablePath = 2 };

/// One latch per accessor family; they are independent of each other.
inline RepresentationLatch readerLatch = RepresentationLatch::Unknown;
inline RepresentationLatch writerLatch = RepresentationLatch::Unknown;
inline RepresentationLatch lockLatch = RepresentationLatch::Unknown;

}  // namespace qrz
