// The two rows of bar ends that a block of samples makes.
#pragma once

#include <cstdint>

#include "plugin/pixels/buffer.h"

namespace qrz {

/// Samples of two signed 8-bit values each, side by side.
struct SamplePairs {
  const int8_t* values;
  int32_t count;
};

/// One element per column: what the first and what the second values of the
/// samples give. After smooth and place, in this order, the elements are the
/// rows where the bars end: whole numbers in the range of 32-bit integers, also
/// outside the picture.
class Waveform {
 public:
  explicit Waveform(int32_t width) : first_(width), second_(width), width_(width) {}

  /// False if there was no memory.
  explicit operator bool() const { return first_ && second_; }

  /// Spreads the exponential moving averages of the samples over the columns:
  /// a column keeps the last one that falls into it, or 0. `smooth` is the
  /// length of the average, 1 for none; the weight of a new sample is
  /// 2 / (smooth + 1), infinite for -1.
  void smooth(const SamplePairs& samples, int32_t smooth);
  /// Scales the columns to a picture of `height` rows, so that the largest
  /// second value (but at least 100) is half of it, and counts from `middle`
  /// down. What leaves the range becomes the nearest integer in it, what is no
  /// number row 0.
  void place(int32_t height, int32_t middle);

  [[nodiscard]] int32_t width() const { return width_; }
  [[nodiscard]] const double* first() const { return first_.data(); }
  [[nodiscard]] const double* second() const { return second_.data(); }

 private:
  Buffer<double> first_, second_;
  int32_t width_;
  double peak_ = 100.0;
};

}  // namespace qrz
