// The host with the plug-in, whose objects are linked in.
#pragma once

#include <cstdlib>
#include <cstring>

#include "host/core/runtime.h"

extern "C" void REALPluginMain(void* (*resolver)(const char* name));

namespace fuzz {

/// Once, at the start. QRZ_FUZZ_PICTURES=bitmap makes new pictures bitmaps.
inline void startPlugin() {
  const char* pictures = getenv("QRZ_FUZZ_PICTURES");
  if (pictures != nullptr && strcmp(pictures, "bitmap") == 0) {
    host::runtime().settings.newPictures = host::Storage::Bitmap;
  }
  host::addBuiltInClasses(host::runtime().registry);
  REALPluginMain(host::resolveService);
}

}  // namespace fuzz
