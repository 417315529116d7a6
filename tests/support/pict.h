// What the tests of PICT data share.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "host/core/picture.h"
#include "platform/standin/standin.h"

namespace host {

using Bytes = std::vector<uint8_t>;
using Words = std::vector<uint32_t>;

/// Sizes that do not fit in 16 bits wrap, as in a careless caller.
OpenCPicParams parametersFor(int32_t width, int32_t height);
PicHandle startRecording(int32_t width, int32_t height);
/// The host's service.
void drawPrimitive(const Ref<Picture>& picture, const Rect& rect);
/// The whole picture, recorded as the plug-in does.
PicHandle record(const Ref<Picture>& picture);
Bytes recordedBytes(const Ref<Picture>& picture);
Bytes bytesOf(PicHandle picture);
/// The host's picture that takes the data over.
Ref<Picture> pictureOver(PicHandle data);

/// Bytes from hexadecimal digits; spaces are for the reader.
Bytes hex(std::string_view text);
Bytes joined(const std::vector<Bytes>& parts);

/// What PICT data draws on a white canvas.
Words drawn(const Bytes& data, int32_t width, int32_t height);

Ref<Picture> pictureOf(int32_t width, int32_t height, const Words& words);
/// Pads included.
Ref<Picture> filled(int32_t width, int32_t height, const std::function<uint32_t()>& pixel);
/// Pixels without pads.
Words colors(const Picture& picture);

/// Checks that nothing is left.
class PictTest : public testing::Test {
 protected:
  void TearDown() override;
  Ref<Picture> randomPicture(int32_t width, int32_t height);

  std::mt19937 random{1984};
};

}  // namespace host
