// A new picture, and write access to its pixels.
#pragma once

#include "plugin/binding/reference.h"
#include "plugin/pixels/locks.h"
#include "plugin/pixels/path.h"

namespace qrz {

/// Between create and finish holds the new picture's one reference, its
/// description lock and, for a GWorld, its pixel lock. Pixels that are not
/// written keep what the host put into the new picture. A writer that is not
/// finished gives everything back, the picture included.
template <typename Path>
class PictureWriter {
 public:
  /// Makes a picture of width × height pixels, once. False, with nothing held,
  /// if the latch names the other path, a size is below 1 (the host is then not
  /// asked), or the host's new picture cannot be written on this path.
  bool create(int32_t width, int32_t height);

  /// Unlocks the picture, tells the host to drop what it derived from the old
  /// pixels, and passes the picture's reference to the caller. Once, after a
  /// create that succeeded.
  [[nodiscard]] HostPicture finish() {
    description_.unlock();
    pixMap_.unlock();
    HostPicture picture = picture_.release();
    service::REALPictureClearCache(picture);
    return picture;
  }

  /// The pixels of row y, in Path::Format. The size is the reader's, or
  /// whatever was asked for.
  [[nodiscard]] PixelWord* row(int32_t y) const {
    return reinterpret_cast<PixelWord*>(rows_.row(y));
  }

 private:
  /// Finds the new picture's pixels by its description.
  bool attach(const PictureDescription& description);

  // Dropped in the reverse order: pixels, description, reference.
  Reference<HostPicture> picture_;
  DescriptionLock description_;
  PixelLock pixMap_;
  typename Path::Rows rows_{};
};

}  // namespace qrz
