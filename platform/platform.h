// The calls of QuickDraw, the Memory Manager and Core Graphics that the
// plug-in makes, as the platform declares them for i386. They are undefined
// symbols of the plug-in: whichever process loads it supplies them.
#pragma once

#include <cstddef>
#include <cstdint>

extern "C" {

// --- QuickDraw ---------------------------------------------------------------

/// Coordinates are 16-bit; right and bottom are exclusive.
typedef struct {
  int16_t top, left, bottom, right;
} Rect;

typedef struct OpaquePort* CGrafPtr;
typedef CGrafPtr GWorldPtr;  ///< an offscreen world is also a port: the same pointer
typedef struct OpaqueDevice** GDHandle;
typedef struct OpaquePixMap** PixMapHandle;
typedef struct OpaqueRegion** RgnHandle;
typedef struct OpaquePicture** PicHandle;

/// The world's pixel map; it lives as long as the world.
PixMapHandle GetGWorldPixMap(GWorldPtr world);
/// Bits per pixel.
int16_t GetPixDepth(PixMapHandle map);
/// Keeps the pixels in place until UnlockPixels; the low byte is 0 on failure.
uint8_t LockPixels(PixMapHandle map);
void UnlockPixels(PixMapHandle map);
/// First byte of the top row, valid while the pixels are locked; may be null.
char* GetPixBaseAddr(PixMapHandle map);
/// Bytes from one row to the next.
int32_t GetPixRowBytes(PixMapHandle map);

/// Current port and device; both out parameters are filled.
void GetGWorld(CGrafPtr* port, GDHandle* device);
void SetGWorld(CGrafPtr port, GDHandle device);
/// A new empty region, owned by the caller until DisposeRgn; null without memory.
RgnHandle NewRgn(void);
void DisposeRgn(RgnHandle region);
void SetRect(Rect* rect, int16_t left, int16_t top, int16_t right, int16_t bottom);
/// Moves the pixels of the current port inside `rect`, fills what is uncovered
/// with the port's background colour and sets `update` to that area.
void ScrollRect(const Rect* rect, int16_t dh, int16_t dv, RgnHandle update);

typedef struct {
  Rect srcRect;
  int32_t hRes, vRes;  ///< Fixed, pixels per inch
  int16_t version, reserved1;
  int32_t reserved2;
} OpenCPicParams;

/// Starts recording into new PICT data, owned by the caller; null on failure.
PicHandle OpenCPicture(const OpenCPicParams* parameters);
void ClosePicture(void);
void KillPicture(PicHandle picture);
/// One of the eight classic colours, for instance 33 black and 30 white.
void ForeColor(long color);
void BackColor(long color);

// --- Memory Manager ----------------------------------------------------------

/// A pointer to a master pointer, which points to the bytes.
typedef char** Handle;

/// Copies `size` bytes into a new handle; 0, or an error code and no handle.
int16_t PtrToHand(const void* source, Handle* result, long size);
void HLock(Handle handle);
void HUnlock(Handle handle);
long GetHandleSize(Handle handle);

// --- Core Graphics -----------------------------------------------------------

typedef struct CGContext* CGContextRef;

void* CGBitmapContextGetData(CGContextRef context);
size_t CGBitmapContextGetBytesPerRow(CGContextRef context);
size_t CGBitmapContextGetBitsPerComponent(CGContextRef context);
size_t CGBitmapContextGetBitsPerPixel(CGContextRef context);

}  // extern "C"
