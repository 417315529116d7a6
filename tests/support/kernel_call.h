// Calls of row kernels: their rows, and what is to come out.
#pragma once

#include <array>
#include <initializer_list>
#include <utility>

#include "host/bench/instruction_trace.h"
#include "tests/support/guarded_row.h"

namespace host {

/// Channels and pad, 0 to 255.
struct Pixel {
  int64_t red, green, blue, pad = 0;

  [[nodiscard]] bool hasColorOf(const Pixel& p) const {
    return red == p.red && green == p.green && blue == p.blue;
  }
  [[nodiscard]] bool isGrey() const { return red == green && green == blue; }
};

/// What `map` makes of the reds, of the greens and of the blues, truncated and cut to
/// 0 to 255; pad 0.
template <typename Map, typename... Colors>
Pixel each(const Map& map, const Colors&... colors) {
  const auto cut = [](auto value) {
    return value < 0 ? 0 : value > 255 ? 255 : static_cast<int64_t>(value);
  };
  return {cut(map(colors.red...)), cut(map(colors.green...)), cut(map(colors.blue...))};
}

/// Random numbers, the same in every run.
class Chance {
 public:
  uint32_t word() {
    state_ = state_ * 6364136223846793005U + 1442695040888963407U;
    return static_cast<uint32_t>(state_ >> 32);
  }
  int32_t between(int32_t least, int32_t most) {
    const uint64_t range = static_cast<uint32_t>(most - least) + uint64_t{1};
    return least + static_cast<int32_t>(word() * range >> 32);
  }
  int32_t byte() { return between(0, 255); }
  bool oneIn(int32_t count) { return between(1, count) == 1; }
  template <typename T>
  T oneOf(std::initializer_list<T> values) {
    return values.begin()[between(0, static_cast<int32_t>(values.size()) - 1)];
  }

 private:
  uint64_t state_ = 1984;
};

/// One call after the other, in one pixel format.
class KernelCall {
 public:
  /// Where red, green, blue and pad are among a pixel's bytes in memory.
  using BytePlaces = std::array<int, 4>;
  explicit KernelCall(const BytePlaces& places) : places_(places) {}

  /// With rows of `length` elements. Over all turns, every row is in every place.
  static constexpr uint32_t kTurns = GuardedRow::kPlaces;
  void start(int32_t length, uint32_t turn);

  /// The call's next row. Its address divides by `step`.
  GuardedRow& row(int32_t elements, size_t elementSize, size_t step);
  template <typename T>
  GuardedRow& row(int32_t elements) {
    return row(elements, sizeof(T), sizeof(T));
  }
  /// The same for pixels, at any address: not of any use yet, or of one of many kinds.
  GuardedRow& newPixels() { return row(count, 4, 1); }
  GuardedRow& pixels();

  /// Pixels as kernels take single ones, and of rows.
  [[nodiscard]] uint32_t word(const Pixel& pixel) const;
  [[nodiscard]] Pixel pixel(const GuardedRow& row, int32_t x) const;

  /// Runs a kernel once.
  void run(const std::function<void()>& kernel);
  template <typename Kernel, typename Value>
  void expectValue(const Value& expected, const Kernel& kernel) {
    Value value{};
    run([&] { value = kernel(); });
    EXPECT_EQ(value, expected);
  }
  /// Runs `kernel(destination, count, source…)`; `map(pixel…)` is to come out.
  template <size_t Sources = 1, typename Kernel, typename Map>
  void filter(const Kernel& kernel, const Map& map) {
    [&]<size_t... I>(std::index_sequence<I...>) {
      GuardedRow& to = newPixels();
      GuardedRow* const from[] = {(static_cast<void>(I), &pixels())...};
      for (int32_t x = 0; x < count; ++x) to.expect(x, word(map(pixel(*from[I], x)...)));
      run([&] { kernel(to, count, *from[I]...); });
    }
    (std::make_index_sequence<Sources>());
  }

  /// Whether all rows hold what they are to, and nothing around them was touched.
  [[nodiscard]] testing::AssertionResult isAsExpected() const;

  Chance chance;
  int32_t count = 0;  ///< the rows' length
  Pixel color{};      ///< of many pixels in some rows

  /// Kernels are run one instruction at a time.
  bool isTraced = false;
  std::optional<InstructionSet> highest;  ///< in this program's code, by the last trace

 private:
  enum class Kind { Any, Zeros, Ones, Greys, Runs, Ends, Ties, Color };
  Pixel pixelOf(Kind kind, const Pixel& before);

  BytePlaces places_;
  uint32_t turn_ = 0, shifts_ = 0, rowsUsed_ = 0;
  GuardedRow rows_[5];
};

}  // namespace host
