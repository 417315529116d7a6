// Read access to the pixels of a picture.
#pragma once

#include "plugin/binding/reference.h"
#include "plugin/pixels/locks.h"
#include "plugin/pixels/path.h"

namespace qrz {

/// While open, holds the picture's description lock and one reference to it,
/// on the GWorldPath also its pixel lock; gives all back at its end. The host
/// must not be asked to draw into or free the picture meanwhile.
///
/// On the GWorldPath a picture that cannot be addressed (PICT data, a bitmap
/// context, another depth than 32, any unknown type) is drawn by the host into
/// a new 32-bit picture, and that copy is read; the reader then holds its only
/// reference. The host's own bitmap record is left to the RowTablePath.
template <typename Path>
class PictureReader {
 public:
  /// Opens a closed reader, once. False, with nothing held, if the latch names
  /// the other path, the picture is null or it cannot be read on this path.
  bool open(HostPicture picture);

  [[nodiscard]] int32_t width() const { return width_; }
  [[nodiscard]] int32_t height() const { return height_; }
  /// The pixels of row y, 0 to height() - 1; width() words in Path::Format.
  [[nodiscard]] const PixelWord* row(int32_t y) const {
    return reinterpret_cast<const PixelWord*>(rows_.row(y));
  }
  /// The same to write to: the picture's own pixels, or those of the copy, of
  /// which the picture sees nothing. The host is not told of the change.
  [[nodiscard]] PixelWord* writableRow(int32_t y) const {
    return reinterpret_cast<PixelWord*>(rows_.row(y));
  }

 private:
  enum class Outcome { Open, HostBitmap, Unusable };

  /// Opens the picture itself, without the fallback.
  Outcome openInPlace(HostPicture picture);

  // Dropped in the reverse order: pixels, description, reference.
  Reference<HostPicture> picture_;
  DescriptionLock description_;
  PixelLock pixMap_;
  typename Path::Rows rows_{};
  int32_t width_ = 0;
  int32_t height_ = 0;
};

}  // namespace qrz
