// What the host needs of the Linux stand-in beyond the platform's own calls:
// making and disposing of pixel stores, and watching the calls.
//
// libplatform.so is loaded by the host (or any other program that loads the
// plug-in) and supplies platform/platform.h.
#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include "platform/platform.h"

namespace standin {

/// Pixels of a GWorld. Depth 32: bytes X, R, G, B; depth 24: R, G, B; depth 16:
/// big-endian words 0RRRRRGGGGGBBBBB.
struct Pixels {
  uint8_t* base;
  int32_t rowBytes;
  int32_t width;
  int32_t height;
  int32_t depth;  ///< 32, 24 or 16
};

/// Bytes per row that the stand-in chooses: padded, never exactly the pixels.
/// 64-bit, so that a caller can tell what is too large.
int64_t rowBytesFor(int32_t width, int32_t depth);

/// Takes back the block of a world's pixels.
using ReleaseBlock = void (*)(uint8_t* block, size_t size);

/// A GWorld of width × height pixels that takes over `base`, a block of height ×
/// rowBytes bytes, and hands it to `release` on disposal; without one the block
/// is from malloc and freed. Ports start with black foreground and white
/// background. Null without memory.
GWorldPtr newGWorldOver(uint8_t* base, int32_t width, int32_t height, int32_t depth,
                        int32_t rowBytes, ReleaseBlock release = nullptr);
/// If the world is the current port, the screen's port becomes current.
void disposeGWorld(GWorldPtr world);
/// True if a world that lives is at the address; any address is fine.
bool isGWorld(const void* address);
/// Of the screen's port: no base, no size.
Pixels pixelsOf(GWorldPtr world);

/// A bitmap context over `data`, which stays the caller's. Null without memory.
CGContextRef newBitmapContext(void* data, size_t bytesPerRow, size_t bitsPerComponent,
                              size_t bitsPerPixel);
void disposeBitmapContext(CGContextRef context);

/// A handle of `size` zero bytes; null without memory.
Handle newHandle(long size);
void disposeHandle(Handle handle);
long sizeOf(Handle handle);

// --- PICT data ---------------------------------------------------------------

/// The largest picture that can be recorded, in pixels: that of one pixel map, as
/// every reader of PICT data expects it, and of 16-bit coordinates.
constexpr int32_t kWidestRecording = 4095;
constexpr int32_t kTallestRecording = 32767;

/// Whether a recording is open: what is drawn then is recorded and not shown.
bool isRecording();

/// Writes the `count` words 0x00RRGGBB of row y. May throw std::bad_alloc.
using ReadRow = std::function<void(int32_t y, int32_t count, uint32_t* words)>;

/// Records pixels that cover `place`; they are counted from its top left. A
/// picture for which there is no memory ends up with an empty frame.
void recordPixels(const Rect& place, const ReadRow& readRow);

/// The frame of PICT data; empty if the data is too short to have one.
Rect pictFrame(std::span<const uint8_t> data);

/// Rows of words 0x00RRGGBB without gaps.
struct Canvas {
  uint32_t* words;
  int32_t width;
  int32_t height;
};

/// Draws PICT data so that its frame covers the canvas. Damaged data and what
/// cannot be read end the drawing; what came before stays. Throws std::bad_alloc
/// without memory.
void drawPict(std::span<const uint8_t> data, const Canvas& canvas);

// --- Watching ----------------------------------------------------------------

/// What is held at the moment.
struct Counts {
  int32_t pixelLocks;   ///< LockPixels without UnlockPixels
  int32_t handleLocks;  ///< HLock without HUnlock
  int32_t handles;      ///< PICT data included
  int32_t regions;
  int32_t worlds;
  int32_t contexts;
  int32_t recordings;  ///< OpenCPicture without ClosePicture
};
Counts counts();

/// Called with the name of every platform call before it is carried out; false
/// makes a call that can fail do so. Null watches nothing.
using CallHook = bool (*)(const char* call);
void setCallHook(CallHook hook);

}  // namespace standin
