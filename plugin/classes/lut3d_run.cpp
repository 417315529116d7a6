// PictureLut3DQRZ.Run: a region of the source picture mapped through the table.

#include "plugin/classes/lut3d.h"
#include "plugin/kernels/vector.h"
#include "plugin/pixels/filter.h"

namespace qrz {
namespace {

/// One colour channel's places in the lattice, for a vector of pixels.
struct Lut3DAxis {
  Levels offset;     ///< of the lower point, in table elements
  Levels step;       ///< from the lower to the upper point; 0 at the last one
  Levels remainder;  ///< of the level, 0 to 16
};

constexpr int32_t kLut3DBlockSize = 64;

/// Pixels on their way through the table.
struct Lut3DBlock {
  uint16_t red[kLut3DBlockSize], green[kLut3DBlockSize], blue[kLut3DBlockSize];
  uint16_t points[4][kLut3DBlockSize];      ///< of the tetrahedron, in table elements
  uint16_t remainders[3][kLut3DBlockSize];  ///< in descending order
  uint32_t mixed[kLut3DBlockSize][4];       ///< the new red, green and blue
};

/// A level's fraction of the way to the next point, by its remainder.
constexpr double kFractions[kLut3DLevelsPerPoint] = {
    0 / 17.0, 1 / 17.0,  2 / 17.0,  3 / 17.0,  4 / 17.0,  5 / 17.0,  6 / 17.0,  7 / 17.0, 8 / 17.0,
    9 / 17.0, 10 / 17.0, 11 / 17.0, 12 / 17.0, 13 / 17.0, 14 / 17.0, 15 / 17.0, 16 / 17.0};

QRZ_INLINE Lut3DAxis lut3DAxisAt(Levels level, uint16_t stride) {
  // level / 17, exact for all levels.
  const Levels lower = level * 241 >> 12;
  const Levels hasUpper = isGreater(Levels{} + (kLut3DUsedPoints - 1), lower);
  return {lower * stride, hasUpper & stride, level - lower * kLut3DLevelsPerPoint};
}

}  // namespace
}  // namespace qrz

#define QRZ_KERNEL "plugin/kernels/lut3d.inc"
#include "plugin/kernels/for_each_level.h"

namespace qrz {
namespace {

struct Lut3DRow {
  const Lut3DElement* table;

  template <typename Format>
  void row(PixelWord* destination, int32_t count, const PixelWord* source) const {
    QRZ_KERNEL_CALL(lut3DRow<Format>(destination, count, source, table));
  }
};

}  // namespace

/// Maps the region MinX, MinY, MaxX, MaxY of SourcePicture through the table
/// into a new picture of the source's size, which becomes DestinationPicture;
/// an earlier one is released first, whatever happens. Pixels outside the
/// region are not written. A region that starts left of or above the picture
/// starts at the picture's edge. Between the lattice points it interpolates
/// over the tetrahedron that holds the colour (after J. Kasson, W. Plouffe and
/// S. Nin, "A Tetrahedral Interpolation Technique for Color Space Conversion",
/// SPIE 1909, 1993). 1 if there is a new picture, otherwise 0.
int32_t RunLut3DQRZ(HostObject instance) {
  auto& lut = instanceData<PictureLut3D>(lut3DClass, instance);
  FilterInstance& filter = lut.filter;
  FilterInstance::drop(filter.DestinationPicture);
  if (filter.SourcePicture == nullptr) return 0;
  const auto store = [&filter](HostPicture made) { filter.DestinationPicture = made; };
  return filterPicture(filter.SourcePicture, filter.region(), Lut3DRow{lut.table}, store) != nullptr
             ? 1
             : 0;
}

}  // namespace qrz
