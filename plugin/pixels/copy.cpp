#include "plugin/pixels/copy.h"

#include <cstring>

#include "plugin/binding/reference.h"
#include "plugin/pixels/locks.h"

namespace qrz {
namespace {

constexpr const char* kDrawPicture =
    "DrawPicture(Image as Picture, x as Integer, y as Integer, w as Integer, h as Integer, "
    "sx as Integer = 0, sy as Integer = 0, sw as Integer = -10000, sh as Integer = -10000)";

/// The graphics object's own method, or else the host's older service, which
/// is looked up on every use; null if the host has neither.
void* drawPictureAddress(HostGraphics graphics) {
  void* address = service::REALLoadObjectMethod(asObject(graphics), kDrawPicture);
  return address != nullptr ? address : resolver("RuntimeGraphicsDrawPicture");
}

bool isPlainCopy(const DrawGeometry& g) {
  return g.sw == g.w && g.sh == g.h && g.x == 0 && g.y == 0 && g.sx == 0 && g.sy == 0;
}

bool copyRowsOf(const HostBitmap* destination, const HostBitmap* source) {
  if (destination == nullptr || source == nullptr) return false;
  if (destination->width != source->width || destination->height != source->height) return false;
  if (destination->kind != 0 || source->kind != 0) return false;
  if (destination->rowTable == nullptr || source->rowTable == nullptr) return false;
  if (source->width < 1) return true;
  const size_t rowBytes = 4 * static_cast<size_t>(source->width);
  for (int32_t y = 0; y < source->height; ++y) {
    // A row without an address holds no pixels to copy.
    if (destination->rowTable[y] == nullptr || source->rowTable[y] == nullptr) continue;
    memcpy(destination->rowTable[y], source->rowTable[y], rowBytes);
  }
  return true;
}

}  // namespace

HostPicture MakeCopy32(HostPicture source, int32_t width, int32_t height) {
  if (source == nullptr || width < 1 || height < 1) return nullptr;
  HostPicture copy = service::newPicture(width, height, 32);
  if (copy == nullptr) return nullptr;
  const Reference<HostGraphics> graphics{service::pluginPictureGraphicsGetter(copy)};
  if (!graphics) return copy;
  DrawPictureInto(graphics.get(), copy, source, {0, 0, width, height, 0, 0, width, height});
  return copy;
}

bool DrawPictureInto(HostGraphics graphics, HostPicture destination, HostPicture source,
                     const DrawGeometry& g) {
  if (graphics != nullptr && source != nullptr) {
    if (void* draw = drawPictureAddress(graphics)) {
      service::DrawPictureService::call(draw, graphics, source, g.x, g.y, g.w, g.h, g.sx, g.sy,
                                        g.sw, g.sh);
      return true;
    }
  }
  return CopyRows(destination, source, g);
}

bool CopyRows(HostPicture destination, HostPicture source, const DrawGeometry& geometry) {
  if (destination == nullptr || source == nullptr || !isPlainCopy(geometry)) return false;
  DescriptionLock sourceLock;
  if (!sourceLock.lockAs(kHostBitmap, source)) return false;
  DescriptionLock destinationLock;
  if (!destinationLock.lockAs(kHostBitmap, destination)) return false;
  return copyRowsOf(static_cast<const HostBitmap*>(destinationLock.description().data),
                    static_cast<const HostBitmap*>(sourceLock.description().data));
}

}  // namespace qrz
