#include "plugin/waveform/waveform.h"

#include <limits>

#include "plugin/pixels/convert.h"

namespace qrz {
namespace {

/// Steps through floor(i × columns / samples) for i = 0, 1, …, without a
/// division for each.
class ColumnSteps {
 public:
  ColumnSteps(int32_t columns, int32_t samples)
      : samples_(samples), quotient_(columns / samples), remainder_(columns % samples) {}

  [[nodiscard]] int32_t column() const { return column_; }
  void next() {
    column_ += quotient_;
    // Both are below `samples`; this sum could leave 31 bits.
    rest_ += static_cast<uint32_t>(remainder_);
    if (rest_ < static_cast<uint32_t>(samples_)) return;
    rest_ -= static_cast<uint32_t>(samples_);
    ++column_;
  }

 private:
  int32_t samples_, quotient_, remainder_;
  int32_t column_ = 0;
  uint32_t rest_ = 0;
};

/// Averages fade towards 0 without reaching it, and the processor is slow with
/// the smallest numbers. Far below what any sample adds, they count as 0: no sum
/// with a later sample and no row differs.
double withoutTraces(double average) {
  constexpr double kTrace = 1e-290;
  return average < kTrace && average > -kTrace ? 0.0 : average;
}

double weightOf(int32_t smooth) {
  const int64_t divisor = static_cast<int64_t>(smooth) + 1;
  if (divisor == 0) return std::numeric_limits<double>::infinity();
  return 2.0 / static_cast<double>(divisor);
}

}  // namespace

void Waveform::smooth(const SamplePairs& samples, int32_t smooth) {
  if (samples.count < 1) return;
  const double weight = weightOf(smooth);
  const double rest = 1 - weight;
  double a = samples.values[0];
  double b = samples.values[1];
  ColumnSteps steps(width_, samples.count);
  for (int32_t i = 0; i < samples.count; ++i, steps.next()) {
    a = withoutTraces(a * rest + samples.values[2 * i] * weight);
    b = withoutTraces(b * rest + samples.values[2 * i + 1] * weight);
    if (b > peak_) peak_ = b;
    first_[steps.column()] = a;
    second_[steps.column()] = b;
  }
}

void Waveform::place(int32_t height, int32_t middle) {
  const auto row = [&](double value) -> double {
    return saturatedInteger(middle + ((value * 0.5) / peak_) * height);
  };
  for (int32_t x = 0; x < width_; ++x) {
    first_[x] = row(first_[x]);
    second_[x] = row(second_[x]);
  }
}

}  // namespace qrz
