// What the plug-in may import, and where the platform has it.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/mach_o/format.h"

namespace machobundle {

/// The libraries that the bundle names; their numbers count from 1.
inline constexpr auto kLibraries = std::to_array<std::string_view>({
    "/System/Library/Frameworks/Carbon.framework/Versions/A/Carbon",
    "/System/Library/Frameworks/ApplicationServices.framework/Versions/A/ApplicationServices",
    "/usr/lib/libSystem.B.dylib",
});
inline constexpr uint8_t kSystemLibrary = 3;

inline constexpr auto kCFunctions = std::to_array<std::string_view>({
    "calloc",
    "free",
    "malloc",
    "memcmp",
    "memcpy",
    "memmove",
    "memset",
    "strlen",
});

/// What `platform/platform.h` declares.
inline constexpr auto kPlatformCalls = std::to_array<std::string_view>({
    "BackColor",     "CGBitmapContextGetBitsPerComponent",
    "ClosePicture",  "CGBitmapContextGetBitsPerPixel",
    "DisposeRgn",    "CGBitmapContextGetBytesPerRow",
    "ForeColor",     "CGBitmapContextGetData",
    "GetGWorld",     "GetGWorldPixMap",
    "GetHandleSize", "GetPixBaseAddr",
    "GetPixDepth",   "GetPixRowBytes",
    "HLock",         "HUnlock",
    "KillPicture",   "LockPixels",
    "NewRgn",        "OpenCPicture",
    "PtrToHand",     "ScrollRect",
    "SetGWorld",     "SetRect",
    "UnlockPixels",
});

/// The number of the library that has a function; nothing if the plug-in must
/// not need it. Which library owns a call of the platform differs between the
/// versions of the system, so these are looked up in all of the process.
inline std::optional<uint8_t> libraryOf(std::string_view function) {
  if (std::ranges::find(kCFunctions, function) != kCFunctions.end()) return kSystemLibrary;
  if (std::ranges::find(kPlatformCalls, function) != kPlatformCalls.end()) {
    return mach_o::kFlatLookup;
  }
  return std::nullopt;
}

}  // namespace machobundle
