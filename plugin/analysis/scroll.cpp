// ScrollHorizontalQRZ, ScrollVerticalQRZ, ScrollQRZ: a picture's pixels moved
// in place.

#include <algorithm>
#include <cstring>
#include <numeric>

#include "plugin/pixels/buffer.h"
#include "plugin/pixels/lock.h"

namespace qrz {
namespace {

/// Moves `count` units of `unit` bytes to the right by `shift`, 1 to count - 1;
/// what leaves on the right comes in on the left. `buffer` holds the shorter of
/// the two stretches.
void rotate(uint8_t* bytes, int64_t count, int64_t shift, int64_t unit, uint8_t* buffer) {
  const auto head = static_cast<size_t>((count - shift) * unit);
  const auto tail = static_cast<size_t>(shift * unit);
  if (head <= tail) {
    memcpy(buffer, bytes, head);
    memmove(bytes, bytes + head, tail);
    memcpy(bytes + tail, buffer, head);
  } else {
    memcpy(buffer, bytes + head, tail);
    memmove(bytes + tail, bytes, head);
    memcpy(bytes, buffer, tail);
  }
}

/// Along a row; a failure to move counts as done.
struct Horizontal {
  static constexpr int32_t resultOfFailure = 1;
  static constexpr bool isHorizontal = true;

  static int32_t length(const GWorldLock& lock) { return lock.width(); }
  /// For the shorter stretch of a row.
  static int64_t bufferBytes(const GWorldLock& lock, int32_t shift) {
    return int64_t{lock.bytesPerPixel()} * std::min(shift, lock.width() - shift);
  }
  static void rotateAll(const GWorldLock& lock, int32_t shift, uint8_t* buffer) {
    for (int32_t y = 0; y < lock.height(); ++y) {
      rotate(lock.row(y), lock.width(), shift, lock.bytesPerPixel(), buffer);
    }
  }
};

/// Whole rows, what follows the last pixel of each included.
struct Vertical {
  static constexpr int32_t resultOfFailure = 0;
  static constexpr bool isHorizontal = false;

  static int32_t length(const GWorldLock& lock) { return lock.height(); }
  static int64_t bufferBytes(const GWorldLock& lock, int32_t /*shift*/) { return lock.rowBytes(); }
  /// Every row moves once, straight to its place: the rows that take each
  /// other's place form as many circles as the greatest common divisor says.
  static void rotateAll(const GWorldLock& lock, int32_t shift, uint8_t* buffer) {
    const auto bytes = static_cast<size_t>(lock.rowBytes());
    const int32_t rows = lock.height();
    for (int32_t first = std::gcd(rows, shift) - 1; first >= 0; --first) {
      memcpy(buffer, lock.row(first), bytes);
      int32_t to = first;
      for (int32_t from = rowBefore(to, shift, rows); from != first;
           from = rowBefore(to, shift, rows)) {
        memcpy(lock.row(to), lock.row(from), bytes);
        to = from;
      }
      memcpy(lock.row(to), buffer, bytes);
    }
  }
  static int32_t rowBefore(int32_t y, int32_t shift, int32_t rows) {
    return y < shift ? y - shift + rows : y - shift;
  }
};

/// Makes a GWorld the current port; the port and device that were current come
/// back at its end.
class CurrentPort {
 public:
  explicit CurrentPort(GWorldPtr world) {
    GetGWorld(&port_, &device_);
    SetGWorld(world, nullptr);
  }
  CurrentPort(const CurrentPort&) = delete;
  CurrentPort& operator=(const CurrentPort&) = delete;
  ~CurrentPort() { SetGWorld(port_, device_); }

 private:
  CGrafPtr port_ = nullptr;
  GDHandle device_ = nullptr;
};

/// QuickDraw's coordinates: the low 16 bits, signed.
int16_t coordinate(int32_t value) { return static_cast<int16_t>(value); }

/// Scrolls a whole GWorld. Nothing moves if there is no region.
void scrollGWorld(const PictureDescription& description, int32_t dh, int32_t dv) {
  const CurrentPort current(static_cast<GWorldPtr>(description.data));
  RgnHandle uncovered = NewRgn();
  if (uncovered == nullptr) return;
  Rect bounds;
  SetRect(&bounds, 0, 0, coordinate(description.width), coordinate(description.height));
  ScrollRect(&bounds, coordinate(dh), coordinate(dv), uncovered);
  DisposeRgn(uncovered);
}

template <typename Axis>
int32_t scrollWithoutWrap(HostPicture picture, int32_t delta) {
  if (picture == nullptr) return Axis::resultOfFailure;
  DescriptionLock lock;
  const PictureDescription& description = lock.lock(picture);
  if (description.type != kGWorld) return Axis::resultOfFailure;
  const int32_t dh = Axis::isHorizontal ? delta : 0;
  const int32_t dv = Axis::isHorizontal ? 0 : delta;
  if (description.data != nullptr) scrollGWorld(description, dh, dv);
  return 1;
}

template <typename Axis>
int32_t scrollWithWrap(HostPicture picture, int32_t delta) {
  GWorldLock lock;
  if (!lock.acquire(picture, LockDepth::Either)) return Axis::resultOfFailure;
  if (lock.width() < 1 || lock.height() < 1) return 1;
  // Rows that do not hold their pixels are left alone.
  const int64_t pixelBytes = int64_t{lock.bytesPerPixel()} * lock.width();
  if (pixelBytes > lock.rowBytes()) return Axis::resultOfFailure;
  const int32_t length = Axis::length(lock);
  const int32_t remainder = delta % length;
  const int32_t shift = remainder >= 0 ? remainder : remainder + length;
  if (shift == 0) return 1;
  const Buffer<uint8_t> buffer(Axis::bufferBytes(lock, shift));
  if (!buffer) return Axis::resultOfFailure;
  Axis::rotateAll(lock, shift, buffer.data());
  return 1;
}

/// Scrolls the mask, if wanted and there is one, and then the picture.
template <typename Axis>
int32_t scroll(HostPicture picture, int32_t delta, bool wrap, bool scrollmask) {
  if (scrollmask && picture != nullptr) {
    const Reference<HostPicture> mask{service::REALGetPictureMask(picture, 0)};
    if (mask && scroll<Axis>(mask.get(), delta, wrap, false) == 0) return 0;
  }
  if (delta == 0) return 1;
  return wrap ? scrollWithWrap<Axis>(picture, delta) : scrollWithoutWrap<Axis>(picture, delta);
}

}  // namespace

/// Moves the picture's content down by `delta` rows (up, if negative), in place.
/// With `wrap` the rows that leave come in on the other side; without, QuickDraw
/// scrolls, and fills what is uncovered with white or whatever the port's
/// background is. `scrollmask` first moves the picture's mask likewise. Works on
/// GWorlds, with `wrap` of depth 32 and 24. 1 if the picture was moved or had
/// not to be; 0, with the picture as it was, if it is nil, no such GWorld or
/// there is no memory, or if the mask could not be moved. Without memory for
/// QuickDraw's region nothing moves, and the result is still 1.
int32_t ScrollVerticalQRZ(HostPicture picture, int32_t delta, HostBoolean wrap,
                          HostBoolean scrollmask) {
  return scroll<Vertical>(picture, delta, wrap != 0, scrollmask != 0);
}

/// Moves the picture's content to the right by `delta` columns (to the left, if
/// negative), as ScrollVerticalQRZ does. Always 1, also if the picture could not
/// be moved and is as it was.
int32_t ScrollHorizontalQRZ(HostPicture picture, int32_t delta, HostBoolean wrap,
                            HostBoolean scrollmask) {
  return scroll<Horizontal>(picture, delta, wrap != 0, scrollmask != 0);
}

/// ScrollHorizontalQRZ by `deltaX`, then ScrollVerticalQRZ by `deltaY`, each
/// with the mask; the latter's result.
int32_t ScrollQRZ(HostPicture picture, int32_t deltaX, int32_t deltaY, HostBoolean wrap,
                  HostBoolean scrollmask) {
  ScrollHorizontalQRZ(picture, deltaX, wrap, scrollmask);  // which never fails
  return ScrollVerticalQRZ(picture, deltaY, wrap, scrollmask);
}

}  // namespace qrz
