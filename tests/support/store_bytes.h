// The bytes in which the host keeps a picture's rows, with what lies between them.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <span>

#include "host/core/picture.h"
#include "platform/standin/standin.h"

namespace host {

/// Where the rows begin; null for PICT data, which has none.
inline uint8_t* firstRowOf(Picture& picture) {
  void* data = picture.store().data();
  switch (picture.store().type()) {
    case qrz::kGWorld:
      return standin::pixelsOf(static_cast<GWorldPtr>(data)).base;
    case qrz::kHostBitmap:
      return static_cast<qrz::HostBitmap*>(data)->rowTable[0];
    case qrz::kBitmapContext:
      return static_cast<uint8_t*>(CGBitmapContextGetData(static_cast<CGContextRef>(data)));
    default:
      return nullptr;
  }
}

/// All rows, one behind the other; none of PICT data.
inline std::span<uint8_t> storeBytesOf(Picture& picture) {
  uint8_t* first = firstRowOf(picture);
  if (first == nullptr) return {};
  const int64_t stride = standin::rowBytesFor(picture.width(), picture.depth());
  return {first, static_cast<size_t>(stride * picture.height())};
}

/// Calls `work` with each row's bytes behind the pixels.
template <typename Work>
void forEachRowEnd(Picture& picture, const Work& work) {
  const std::span<uint8_t> bytes = storeBytesOf(picture);
  const auto used = static_cast<size_t>(picture.width() * (picture.depth() / 8));
  const auto stride = static_cast<size_t>(standin::rowBytesFor(picture.width(), picture.depth()));
  for (size_t at = 0; at < bytes.size(); at += stride)
    work(bytes.subspan(at + used, stride - used));
}

/// New pictures have 0 there.
inline void markRowEnds(Picture& picture) {
  forEachRowEnd(picture, [](std::span<uint8_t> bytes) { std::ranges::fill(bytes, 0xA5); });
}

/// They hold one value throughout.
inline bool rowEndsAreIntact(Picture& picture) {
  bool areIntact = true;
  forEachRowEnd(picture, [&](std::span<uint8_t> bytes) {
    areIntact &= memcmp(bytes.data(), bytes.data() + 1, bytes.size() - 1) == 0;
  });
  return areIntact;
}

}  // namespace host
