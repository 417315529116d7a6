// The two locks that hold a picture's pixels in place.
#pragma once

#include "plugin/binding/services.h"

namespace qrz {

/// A locked picture description, unlocked at its end at the latest.
class DescriptionLock {
 public:
  DescriptionLock() = default;
  DescriptionLock(const DescriptionLock&) = delete;
  DescriptionLock& operator=(const DescriptionLock&) = delete;
  ~DescriptionLock() { unlock(); }

  /// Locks whatever representation the picture has. `picture` is not null. A
  /// host without the service leaves the description cleared, of type 0, and nothing
  /// locked.
  const PictureDescription& lock(HostPicture picture) {
    description_ = {};
    if (!service::lockPictureDescription.isThere()) return description_;
    picture_ = picture;
    service::lockPictureDescription(picture, &description_);
    return description_;
  }
  /// Locks the picture with a description of the wanted type; false if the
  /// host refuses, and then nothing is locked.
  bool lockAs(int32_t type, HostPicture picture) {
    description_ = {};
    if (service::REALLockPictureDescription(picture, &description_, type) == 0) return false;
    picture_ = picture;
    return true;
  }
  void unlock() {
    if (picture_ != nullptr) service::unlockPictureDescription(picture_);
    picture_ = nullptr;
  }

  /// Valid while locked.
  [[nodiscard]] const PictureDescription& description() const { return description_; }

 private:
  HostPicture picture_ = nullptr;
  PictureDescription description_{};
};

/// A locked QuickDraw pixel map, unlocked at its end at the latest.
class PixelLock {
 public:
  PixelLock() = default;
  PixelLock(const PixelLock&) = delete;
  PixelLock& operator=(const PixelLock&) = delete;
  ~PixelLock() { unlock(); }

  /// False if the platform cannot lock the pixels.
  bool lock(PixMapHandle map) {
    if (LockPixels(map) == 0) return false;
    map_ = map;
    return true;
  }
  void unlock() {
    if (map_ != nullptr) UnlockPixels(map_);
    map_ = nullptr;
  }

 private:
  PixMapHandle map_ = nullptr;
};

/// The pixel map of a GWorld description's data, or null.
inline PixMapHandle pixMapOf(const PictureDescription& description) {
  auto* world = static_cast<GWorldPtr>(description.data);
  return world != nullptr ? GetGWorldPixMap(world) : nullptr;
}

}  // namespace qrz
