#include "host/bench/subject.h"

#include <algorithm>
#include <new>
#include <random>
#include <vector>

#include "host/core/runtime.h"
#include "host/files/image.h"
#include "host/samples/sample_pictures.h"

namespace host {
namespace {

Ref<Picture> newPicture(PictureSize size) {
  auto picture = Picture::create(runtime().storageOfOpenedPictures(), size.width, size.height);
  if (!picture) throw std::bad_alloc();
  return picture;
}

/// The channel moved by -2 to 2 steps.
uint32_t grained(uint32_t channel, uint32_t random) {
  const int32_t moved = static_cast<int32_t>(channel & 0xFF) + static_cast<int32_t>(random % 5) - 2;
  return static_cast<uint32_t>(std::clamp(moved, 0, 255));
}

/// A drawn picture with grain. Larger ones repeat what is drawn, which takes
/// longer than measuring, but not the grain.
Ref<Picture> photo(PictureSize size, Image (*draw)(int32_t width, int32_t height), uint32_t seed) {
  constexpr int32_t kLongestSide = 1024;
  const Image image = draw(std::min(size.width, kLongestSide), std::min(size.height, kLongestSide));
  auto picture = newPicture(size);
  std::minstd_rand random(seed);
  std::vector<uint32_t> row(static_cast<size_t>(size.width));
  for (int32_t y = 0; y < size.height; ++y) {
    const uint32_t* drawn = image.pixels.data() + y % image.height * image.width;
    for (int32_t x = 0; x < size.width; ++x) {
      const uint32_t word = drawn[x % image.width];
      const auto grain = static_cast<uint32_t>(random());
      row[static_cast<size_t>(x)] = grained(word >> 16, grain) << 16 |
                                    grained(word >> 8, grain >> 8) << 8 |
                                    grained(word, grain >> 16);
    }
    picture->store().write({0, y, size.width}, row.data());
  }
  return picture;
}

Ref<Picture> noise(PictureSize size, uint32_t seed) {
  auto picture = newPicture(size);
  std::mt19937 random(seed);
  std::vector<uint32_t> row(static_cast<size_t>(size.width));
  for (int32_t y = 0; y < size.height; ++y) {
    for (uint32_t& word : row) word = random() & 0x00FFFFFF;
    picture->store().write({0, y, size.width}, row.data());
  }
  return picture;
}

Ref<Picture> plain(PictureSize size, uint32_t color) {
  auto picture = newPicture(size);
  picture->fill(0, 0, size.width, size.height, color);
  return picture;
}

}  // namespace

std::string_view nameOf(Content content) {
  static constexpr std::string_view kNames[] = {"photo", "noise", "white", "black", "waveform"};
  return kNames[static_cast<size_t>(content)];
}

Subject makeSubject(Content content, PictureSize size) {
  switch (content) {
    case Content::Photo:
      return {content, size, photo(size, drawLandscape, 1), photo(size, drawColors, 2)};
    case Content::Noise:
      return {content, size, noise(size, 1), noise(size, 2)};
    case Content::White:
      return {content, size, plain(size, 0xFFFFFF), nullptr};
    case Content::Black:
      return {content, size, plain(size, 0x000000), nullptr};
    case Content::Waveform:
      break;
  }
  return {content, size, nullptr, nullptr};
}

Ref<Picture> partOf(const Picture& picture, int32_t left, int32_t top, PictureSize size) {
  auto part = newPicture(size);
  std::vector<uint32_t> row(static_cast<size_t>(size.width));
  for (int32_t y = 0; y < size.height; ++y) {
    picture.store().read({left, top + y, size.width}, row.data());
    part->store().write({0, y, size.width}, row.data());
  }
  return part;
}

}  // namespace host
