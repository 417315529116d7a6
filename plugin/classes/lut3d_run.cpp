// PictureLut3DQRZ.Run: a region of the source picture mapped through the table.

#include "plugin/classes/lut3d.h"
#include "plugin/kernels/lut3d.h"
#include "plugin/pixels/filter.h"

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
  FilterInstance::replace(filter.DestinationPicture, nullptr);
  if (filter.SourcePicture == nullptr) return 0;
  const auto store = [&filter](HostPicture made) {
    FilterInstance::replace(filter.DestinationPicture, made);
  };
  return filterPicture(filter.SourcePicture, filter.region(), Lut3DRow{lut.table}, store) != nullptr
             ? 1
             : 0;
}

}  // namespace qrz
