#include "tests/support/pict.h"

#include <algorithm>
#include <memory>
#include <string>

#include "host/core/runtime.h"

namespace host {
namespace {

constexpr int32_t k72Dpi = 72 << 16;
constexpr int16_t kParametersVersion = -2;

/// A service as the plug-in gets it.
template <typename Function>
Function* service(const char* name) {
  return reinterpret_cast<Function*>(resolveService(name));
}

}  // namespace

OpenCPicParams parametersFor(int32_t width, int32_t height) {
  Rect rect{0, 0, static_cast<int16_t>(height), static_cast<int16_t>(width)};
  return {rect, k72Dpi, k72Dpi, kParametersVersion, 0, 0};
}

PicHandle startRecording(int32_t width, int32_t height) {
  const OpenCPicParams parameters = parametersFor(width, height);
  ForeColor(33);
  BackColor(30);
  return OpenCPicture(&parameters);
}

void drawPrimitive(const Ref<Picture>& picture, const Rect& rect) {
  service<void(Picture*, const Rect*, int32_t)>("drawPicturePrimitive")(picture.get(), &rect, 0);
}

PicHandle record(const Ref<Picture>& picture) {
  PicHandle data = startRecording(picture->width(), picture->height());
  const OpenCPicParams parameters = parametersFor(picture->width(), picture->height());
  drawPrimitive(picture, parameters.srcRect);
  ClosePicture();
  return data;
}

Ref<Picture> pictureOver(PicHandle data) {
  auto* build = service<Picture*(PicHandle, uint8_t)>("REALBuildPictureFromPicHandle");
  return Ref<Picture>::adopt(build(data, 1));
}

Bytes bytesOf(PicHandle picture) {
  auto* data = reinterpret_cast<Handle>(picture);
  HLock(data);
  Bytes bytes(*data, *data + GetHandleSize(data));
  HUnlock(data);
  return bytes;
}

Bytes recordedBytes(const Ref<Picture>& picture) {
  PicHandle data = record(picture);
  Bytes bytes = bytesOf(data);
  KillPicture(data);
  return bytes;
}

Bytes hex(std::string_view text) {
  Bytes bytes;
  std::string digits;
  for (const char c : text) {
    if (isxdigit(static_cast<unsigned char>(c)) != 0) digits += c;
    if (digits.size() < 2) continue;
    bytes.push_back(static_cast<uint8_t>(std::stoi(digits, nullptr, 16)));
    digits.clear();
  }
  return bytes;
}

Bytes joined(const std::vector<Bytes>& parts) {
  Bytes all;
  for (const Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

Words drawn(const Bytes& data, int32_t width, int32_t height) {
  Words words(static_cast<size_t>(width * height), 0x00FFFFFF);
  const auto exact = std::make_unique<uint8_t[]>(data.size());  // nothing lies behind it
  std::copy(data.begin(), data.end(), exact.get());
  standin::drawPict({exact.get(), data.size()}, {words.data(), width, height});
  return words;
}

Ref<Picture> pictureOf(int32_t width, int32_t height, const Words& words) {
  auto picture = Picture::create(Storage::GWorld, width, height);
  picture->setPixels(words);
  return picture;
}

Ref<Picture> filled(int32_t width, int32_t height, const std::function<uint32_t()>& pixel) {
  Words words(static_cast<size_t>(width * height));
  for (uint32_t& word : words) word = pixel();
  return pictureOf(width, height, words);
}

Words colors(const Picture& picture) {
  Words words = picture.pixels();
  for (uint32_t& word : words) word &= 0x00FFFFFF;
  return words;
}

void PictTest::TearDown() {
  runtime().setCallHook(nullptr);
  for (const std::string& leak : runtime().findLeaks()) ADD_FAILURE() << leak;
}

Ref<Picture> PictTest::randomPicture(int32_t width, int32_t height) {
  return filled(width, height, [this] { return static_cast<uint32_t>(random()); });
}

}  // namespace host
