// CountColorsQRZ: a histogram of each channel, added to the caller's blocks.

#include <cstring>

#include "plugin/kernels/histogram.h"
#include "plugin/pixels/filter.h"

namespace qrz {
namespace {

constexpr int32_t kHistogramBytes = 1024;

/// A counter in a memory block, which may lie at any address.
typedef uint32_t Counter __attribute__((aligned(1), may_alias));

/// One of the caller's block variables.
struct Histogram {
  HostMemoryBlock* variable;
  HostMemoryBlock made = nullptr;  ///< for a variable that was nil
  Counter* counters = nullptr;

  /// Gives a nil variable a new block, which is the caller's from then on.
  void fill() {
    if (*variable != nullptr) return;
    *variable = made = service::newMemoryBlock(kHistogramBytes);
  }
  [[nodiscard]] bool isNew() const { return *variable == made; }
  /// Whether there is a block that holds all counters.
  [[nodiscard]] bool isUsable() const {
    if (*variable == nullptr) return false;
    return isNew() || service::memoryBlockGetSize(*variable) >= kHistogramBytes;
  }
  /// Finds the counters; new ones start at 0, whatever the host put there. Looks at the
  /// block again: programs may have run while the picture was opened.
  bool open() {
    if (!isUsable()) return false;
    counters = static_cast<Counter*>(service::memoryBlockGetPtr(*variable));
    if (counters != nullptr && isNew()) memset(counters, 0, kHistogramBytes);
    return counters != nullptr;
  }
};

/// Adds the picture's pixels to three open histograms; returns how many.
template <typename Path>
int32_t countPixels(const PictureReader<Path>& reader, Counter* red, Counter* green,
                    Counter* blue) {
  HistogramCounters counters[kHistograms] = {};
  uint32_t pixels = 0;
  for (int32_t y = 0; y < reader.height(); ++y) {
    QRZ_KERNEL_CALL(countRow<typename Path::Format>(counters, reader.row(y), reader.width()));
    pixels += static_cast<uint32_t>(reader.width());
  }
  for (const HistogramCounters& counted : counters) {
    for (int32_t i = 0; i < 256; ++i) {
      red[i] += counted.red[i];
      green[i] += counted.green[i];
      blue[i] += counted.blue[i];
    }
  }
  return static_cast<int32_t>(pixels);
}

}  // namespace

/// Adds the picture's pixels to three histograms of 256 counters each, unsigned
/// 32-bit and in native order: the first block counts red, the second, named
/// blue, green, and the third, named green, blue. Nil variables receive a new
/// block of 1,024 bytes, owned by the caller; the counters of other blocks are
/// not cleared. `count` becomes the number of pixels, or -1, with nothing
/// counted, if a block cannot be made, is shorter than 1,024 bytes or has no
/// address, or the picture cannot be read.
void CountColorsQRZ(HostPicture picture, HostMemoryBlock* red, HostMemoryBlock* blue,
                    HostMemoryBlock* green, int32_t* count) {
  *count = -1;
  Histogram first{red};
  Histogram second{blue};
  Histogram third{green};
  first.fill();
  second.fill();
  third.fill();
  if (!first.isUsable() || !second.isUsable() || !third.isUsable()) return;
  readPictures<RowTablePath, GWorldPath>(
      Pictures<1>{picture}, [&](auto /*path*/, const auto& readers) {
        if (!first.open() || !second.open() || !third.open()) return;
        *count = countPixels(readers[0], first.counters, second.counters, third.counters);
      });
}

}  // namespace qrz
