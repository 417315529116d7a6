// Direct access to the pixels of an existing picture, to read and change them.
#pragma once

#include "plugin/binding/reference.h"
#include "plugin/pixels/locks.h"
#include "plugin/pixels/path.h"

namespace qrz {

/// While acquired, holds the picture's description lock and one reference to
/// it, for a GWorld also its pixel lock; gives all back at its end and tells the
/// host that the pixels may have changed. No copy is ever made. Meanwhile the
/// host must not be asked to draw into or resize the picture.
template <typename Path>
class PictureLock {
 public:
  PictureLock() = default;
  PictureLock(const PictureLock&) = delete;
  PictureLock& operator=(const PictureLock&) = delete;
  ~PictureLock() {
    pixMap_.unlock();
    if (!picture_) return;
    description_.unlock();
    service::REALPictureClearCache(picture_.get());
  }

  [[nodiscard]] int32_t width() const { return description_.description().columns(); }
  [[nodiscard]] int32_t height() const { return description_.description().rows(); }

 protected:
  // Dropped in the reverse order: pixels, description, reference.
  Reference<HostPicture> picture_;
  DescriptionLock description_;
  PixelLock pixMap_;
  typename Path::Rows rows_{};
};

/// Depths of the pixel maps that a GWorld lock accepts.
enum class LockDepth { Only32, Only24, Either };

class GWorldLock : public PictureLock<GWorldPath> {
 public:
  /// Acquires the lock, once. False, with nothing held, if the latch names the
  /// other path, the picture is null or no GWorld of an accepted depth, or its
  /// pixels cannot be locked.
  bool acquire(HostPicture picture, LockDepth accepted);

  /// 4 (bytes X, R, G, B) or 3 (R, G, B).
  [[nodiscard]] int32_t bytesPerPixel() const { return bytesPerPixel_; }
  /// Bytes from one row to the next.
  [[nodiscard]] int32_t rowBytes() const { return rows_.rowBytes; }
  [[nodiscard]] uint8_t* row(int32_t y) const { return rows_.row(y); }

 private:
  int32_t bytesPerPixel_ = 0;
};

class RowTableLock : public PictureLock<RowTablePath> {
 public:
  /// Acquires the lock, once. False, with nothing held, if the latch names the
  /// other path, the picture is null or has no usable bitmap record.
  bool acquire(HostPicture picture);

  /// Null if the row table has no address for the row.
  [[nodiscard]] PixelWord* row(int32_t y) const {
    return reinterpret_cast<PixelWord*>(rows_.row(y));
  }
};

}  // namespace qrz
