// What the host needs of the Linux stand-in beyond the platform's own calls:
// making and disposing of pixel stores, and watching the calls.
//
// libplatform.so is loaded by the host (or any other program that loads the
// plug-in) and supplies platform/platform.h.
#pragma once

#include <cstdint>

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

/// A GWorld of width × height pixels that takes over `base`, a block from
/// malloc of height × rowBytes bytes, and frees it on disposal. Ports start
/// with black foreground and white background. Null without memory.
GWorldPtr newGWorldOver(uint8_t* base, int32_t width, int32_t height, int32_t depth,
                        int32_t rowBytes);
/// If the world is the current port, the screen's port becomes current.
void disposeGWorld(GWorldPtr world);
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

/// What is held at the moment.
struct Counts {
  int32_t pixelLocks;   ///< LockPixels without UnlockPixels
  int32_t handleLocks;  ///< HLock without HUnlock
  int32_t handles;      ///< PICT data included
  int32_t regions;
  int32_t worlds;
  int32_t contexts;
};
Counts counts();

/// Called with the name of every platform call before it is carried out; false
/// makes a call that can fail do so. Null watches nothing.
using CallHook = bool (*)(const char* call);
void setCallHook(CallHook hook);

}  // namespace standin
