// QuickDraw: offscreen worlds, ports, regions, scrolling.

#include <cstdlib>
#include <cstring>
#include <new>

#include "platform/standin/box.h"
#include "platform/standin/state.h"

struct OpaquePixMap {
  standin::Pixels pixels;
  int32_t locks;
};

struct OpaquePort {
  OpaquePixMap* master;  ///< the pixel map's handle is the address of this field
  OpaquePixMap map;
  uint32_t foreground;  ///< 0x00RRGGBB
  uint32_t background;
  OpaquePort* next;  ///< of the worlds that live
  standin::ReleaseBlock release;
};

struct OpaqueDevice {};

struct OpaqueRegion {
  Rect bounds;
};

namespace standin {
namespace {

void freeBlock(uint8_t* block, size_t /*size*/) { free(block); }

constexpr uint32_t kBlack = 0x000000;
constexpr uint32_t kWhite = 0xFFFFFF;

/// The port that is current before any other: the screen, of which nothing is
/// ever shown.
OpaquePort screen{nullptr, {}, kBlack, kWhite, nullptr, nullptr};
OpaqueDevice screenDeviceRecord;
OpaqueDevice* screenDevice = &screenDeviceRecord;

OpaquePort* worlds = nullptr;
CGrafPtr currentPort = &screen;
GDHandle currentDevice = &screenDevice;

/// The classic eight colours.
uint32_t classicColor(long color) {
  switch (color) {
    case 30:
      return kWhite;
    case 69:
      return 0xFFFF00;
    case 137:
      return 0xFF00FF;
    case 205:
      return 0xFF0000;
    case 273:
      return 0x00FFFF;
    case 341:
      return 0x00FF00;
    case 409:
      return 0x0000FF;
    default:
      return kBlack;
  }
}

/// The pixel of a colour in memory; returns its bytes.
int32_t encodePixel(uint32_t rgb, int32_t depth, uint8_t (&bytes)[4]) {
  const auto red = static_cast<uint8_t>(rgb >> 16);
  const auto green = static_cast<uint8_t>(rgb >> 8);
  const auto blue = static_cast<uint8_t>(rgb);
  if (depth == 16) {
    const auto word = static_cast<uint32_t>((red >> 3) << 10 | (green >> 3) << 5 | blue >> 3);
    bytes[0] = static_cast<uint8_t>(word >> 8);
    bytes[1] = static_cast<uint8_t>(word);
    return 2;
  }
  const uint8_t encoded[] = {0, red, green, blue};
  const int32_t pad = depth == 32 ? 0 : 1;
  memcpy(bytes, encoded + pad, static_cast<size_t>(4 - pad));
  return 4 - pad;
}

uint8_t* pixelAddress(const Pixels& pixels, int32_t x, int32_t y) {
  return pixels.base + static_cast<ptrdiff_t>(y) * pixels.rowBytes + x * (pixels.depth / 8);
}

void fillBox(const Pixels& pixels, const Box& box, uint32_t rgb) {
  uint8_t bytes[4];
  const auto size = static_cast<size_t>(encodePixel(rgb, pixels.depth, bytes));
  for (int32_t y = box.top; y < box.bottom; ++y) {
    for (int32_t x = box.left; x < box.right; ++x) memcpy(pixelAddress(pixels, x, y), bytes, size);
  }
}

/// Copies the box to where it lies after a move by (dh, dv); `box` is the
/// destination, inside the pixels like its source.
void moveBox(const Pixels& pixels, const Box& box, int32_t dh, int32_t dv) {
  if (box.left >= box.right) return;
  const auto bytes = static_cast<size_t>((box.right - box.left) * (pixels.depth / 8));
  // Rows go in the order in which none is overwritten before it was moved.
  const bool upwards = dv > 0;
  for (int32_t i = box.top; i < box.bottom; ++i) {
    const int32_t y = upwards ? box.bottom - 1 - (i - box.top) : i;
    memmove(pixelAddress(pixels, box.left, y), pixelAddress(pixels, box.left - dh, y - dv), bytes);
  }
}

/// The smallest box around what a move uncovers.
Box uncovered(const Box& box, int32_t dh, int32_t dv) {
  Box result = box;
  if (dv == 0 && dh > 0) result.right = std::min(box.right, box.left + dh);
  if (dv == 0 && dh <= 0) result.left = std::max(box.left, box.right + dh);
  if (dh == 0 && dv > 0) result.bottom = std::min(box.bottom, box.top + dv);
  if (dh == 0 && dv < 0) result.top = std::max(box.top, box.bottom + dv);
  return result;
}

/// Scrolls what is in the box, and clears what the move uncovers.
void scrollBox(const Pixels& pixels, const Box& box, int32_t dh, int32_t dv, uint32_t background) {
  const Box kept = intersect(box, {box.left + dh, box.top + dv, box.right + dh, box.bottom + dv});
  if (kept.isEmpty()) {
    fillBox(pixels, box, background);
    return;
  }
  moveBox(pixels, kept, dh, dv);
  fillBox(pixels, {box.left, box.top, box.right, kept.top}, background);
  fillBox(pixels, {box.left, kept.bottom, box.right, box.bottom}, background);
  fillBox(pixels, {box.left, kept.top, kept.left, kept.bottom}, background);
  fillBox(pixels, {kept.right, kept.top, box.right, kept.bottom}, background);
}

OpaquePixMap* pixMap(PixMapHandle handle) { return handle != nullptr ? *handle : nullptr; }

}  // namespace

int64_t rowBytesFor(int32_t width, int32_t depth) {
  const int64_t pixelBytes = static_cast<int64_t>(width) * (depth / 8);
  return (pixelBytes + 15) / 16 * 16 + 16;
}

// NOLINTNEXTLINE(readability-non-const-parameter): the world writes through it
GWorldPtr newGWorldOver(uint8_t* base, int32_t width, int32_t height, int32_t depth,
                        int32_t rowBytes, ReleaseBlock release) {
  if (release == nullptr) release = freeBlock;
  const Pixels pixels{base, rowBytes, width, height, depth};
  auto* world =
      new (std::nothrow) OpaquePort{nullptr, {pixels, 0}, kBlack, kWhite, worlds, release};
  if (world == nullptr) return nullptr;
  world->master = &world->map;
  worlds = world;
  ++held.worlds;
  return world;
}

void disposeGWorld(GWorldPtr world) {
  if (world == nullptr) return;
  if (currentPort == world) currentPort = &screen;
  OpaquePort** link = &worlds;
  while (*link != world) link = &(*link)->next;
  *link = world->next;
  held.pixelLocks -= world->map.locks;
  --held.worlds;
  const Pixels& pixels = world->map.pixels;
  world->release(pixels.base,
                 static_cast<size_t>(pixels.rowBytes) * static_cast<size_t>(pixels.height));
  delete world;
}

bool isGWorld(const void* address) {
  const OpaquePort* world = worlds;
  while (world != nullptr && world != address) world = world->next;
  return world != nullptr;
}

Pixels pixelsOf(GWorldPtr world) { return world->map.pixels; }

}  // namespace standin

using standin::called;
using standin::held;

PixMapHandle GetGWorldPixMap(GWorldPtr world) {
  if (!called("GetGWorldPixMap") || world == nullptr || world->master == nullptr) return nullptr;
  return &world->master;
}

int16_t GetPixDepth(PixMapHandle map) {
  if (!called("GetPixDepth") || map == nullptr) return 0;
  return static_cast<int16_t>(standin::pixMap(map)->pixels.depth);
}

uint8_t LockPixels(PixMapHandle map) {
  if (!called("LockPixels") || map == nullptr) return 0;
  ++standin::pixMap(map)->locks;
  ++held.pixelLocks;
  return 1;
}

void UnlockPixels(PixMapHandle map) {
  called("UnlockPixels");
  if (map == nullptr || standin::pixMap(map)->locks == 0) return;
  --standin::pixMap(map)->locks;
  --held.pixelLocks;
}

char* GetPixBaseAddr(PixMapHandle map) {
  if (!called("GetPixBaseAddr") || map == nullptr) return nullptr;
  return reinterpret_cast<char*>(standin::pixMap(map)->pixels.base);
}

int32_t GetPixRowBytes(PixMapHandle map) {
  called("GetPixRowBytes");
  return map != nullptr ? standin::pixMap(map)->pixels.rowBytes : 0;
}

void GetGWorld(CGrafPtr* port, GDHandle* device) {
  called("GetGWorld");
  *port = standin::currentPort;
  *device = standin::currentDevice;
}

void SetGWorld(CGrafPtr port, GDHandle device) {
  called("SetGWorld");
  standin::currentPort = port != nullptr ? port : &standin::screen;
  // An offscreen world brings its own device; none is given for it.
  standin::currentDevice = device != nullptr ? device : &standin::screenDevice;
}

RgnHandle NewRgn() {
  if (!called("NewRgn")) return nullptr;
  auto* region = new (std::nothrow) OpaqueRegion{};
  if (region == nullptr) return nullptr;
  auto* handle = new (std::nothrow) OpaqueRegion* {region};
  if (handle == nullptr) {
    delete region;
    return nullptr;
  }
  ++held.regions;
  return handle;
}

void DisposeRgn(RgnHandle region) {
  called("DisposeRgn");
  if (region == nullptr) return;
  --held.regions;
  delete *region;
  delete region;
}

void SetRect(Rect* rect, int16_t left, int16_t top, int16_t right, int16_t bottom) {
  called("SetRect");
  *rect = {top, left, bottom, right};
}

void ScrollRect(const Rect* rect, int16_t dh, int16_t dv, RgnHandle update) {
  called("ScrollRect");
  const standin::Pixels& pixels = standin::currentPort->map.pixels;
  const standin::Box box =
      standin::intersect(standin::boxOf(*rect), {0, 0, pixels.width, pixels.height});
  if (pixels.base == nullptr || box.isEmpty()) return;
  standin::scrollBox(pixels, box, dh, dv, standin::currentPort->background);
  if (update == nullptr) return;
  (*update)->bounds = standin::rectOf(standin::uncovered(box, dh, dv));
}

void ForeColor(long color) {
  called("ForeColor");
  standin::currentPort->foreground = standin::classicColor(color);
}

void BackColor(long color) {
  called("BackColor");
  standin::currentPort->background = standin::classicColor(color);
}
