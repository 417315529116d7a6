// Regions in PICT data, and what they let through row by row.
#pragma once

#include <vector>

#include "platform/standin/pict_reader.h"
#include "platform/standin/pict_work.h"

namespace standin {

/// Stretches of a row: where they begin and end, in turns, ascending.
using Edges = std::vector<int32_t>;

/// From `top` on, what was inside between two of the edges is outside, and the
/// other way round.
struct PictBand {
  int32_t top;
  Edges flips;
};

/// A set of pixels, empty above the first band. Bands go down, and an even number
/// of edges flips in each.
struct PictRegion {
  Box bounds;
  std::vector<PictBand> bands;
};

PictRegion regionOf(const Box& box);

/// A region from its size word on. Throws DamagedPict if its rows are out of
/// order or do not end.
PictRegion readRegion(PictReader& reader);

/// A region as it lies on a canvas that `space` covers, from the top row down.
class RegionRows {
 public:
  RegionRows(const PictRegion& region, const Box& space, const Canvas& canvas, PictWork& work);

  /// Goes to a row, not above the one before; true if it has other edges.
  bool advanceTo(int32_t y);
  [[nodiscard]] const Edges& edges() const { return onCanvas_; }

 private:
  const PictRegion& region_;
  Box space_;
  Canvas canvas_;
  PictWork& work_;
  size_t nextBand_ = 0;
  Edges edges_;
  Edges onCanvas_;
};

/// What several regions let through together.
class ClipRows {
 public:
  ClipRows(const std::vector<const PictRegion*>& regions, const Box& space, const Canvas& canvas,
           PictWork& work);

  /// Nothing outside this box of the canvas gets through.
  [[nodiscard]] const Box& bounds() const { return bounds_; }
  /// The edges of a row, not above the one before.
  const Edges& at(int32_t y);

 private:
  PictWork& work_;
  std::vector<RegionRows> regions_;
  Box bounds_;
  Edges edges_;
};

}  // namespace standin
