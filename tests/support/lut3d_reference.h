// Plain tetrahedral interpolation in a 3D table, straight from its definition.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>

namespace host {

/// [r][g][b][x]
using Lut3DTable = std::array<std::array<std::array<std::array<double, 3>, 18>, 18>, 18>;

/// Of one pixel 0x00RRGGBB. The table is to live as long.
class Lut3DReference {
 public:
  explicit Lut3DReference(const Lut3DTable& table) : table_(table) {}

  uint32_t operator()(uint32_t rgb) const {
    int32_t low[3];
    int32_t high[3];
    double f[3];
    for (int axis = 0; axis < 3; ++axis) {
      const auto level = static_cast<int32_t>(rgb >> (16 - 8 * axis) & 0xFF);
      low[axis] = level / 17;
      high[axis] = low[axis] + 1 < 16 ? low[axis] + 1 : 15;
      f[axis] = (level - 17 * low[axis]) / 17.0;
    }
    const std::array<int, 3> order = orderOf(f[0], f[1], f[2]);
    int32_t point[3] = {low[0], low[1], low[2]};
    const std::array<double, 4> weights = {1 - f[order[0]], f[order[0]] - f[order[1]],
                                           f[order[1]] - f[order[2]], f[order[2]]};
    std::array<double, 3> out{};
    for (size_t i = 0; i < 4; ++i) {
      if (i > 0) point[order[i - 1]] = high[order[i - 1]];
      for (size_t x = 0; x < 3; ++x) {
        const double product = weights[i] * at(point)[x];
        out[x] = i == 0 ? product : out[x] + product;
      }
    }
    return toByte(out[0]) << 16 | toByte(out[1]) << 8 | toByte(out[2]);
  }

 private:
  static std::array<int, 3> orderOf(double r, double g, double b) {
    if (r > g) {
      if (g > b) return {0, 1, 2};
      if (r > b) return {0, 2, 1};
      return {2, 0, 1};
    }
    if (b > g) return {2, 1, 0};
    if (b > r) return {1, 2, 0};
    return {1, 0, 2};
  }
  [[nodiscard]] const std::array<double, 3>& at(const int32_t (&p)[3]) const {
    return table_[static_cast<size_t>(p[0])][static_cast<size_t>(p[1])][static_cast<size_t>(p[2])];
  }
  static uint32_t toByte(double out) {
    if (std::isnan(out) || out < 0) return 0;
    return out > 255 ? 255 : static_cast<uint32_t>(out);
  }

  const Lut3DTable& table_;
};

}  // namespace host
