#include "host/core/pict_recording.h"

#include <memory>
#include <new>

#include "platform/standin/standin.h"

namespace host {
namespace {

constexpr int32_t k72Dpi = 72 << 16;
constexpr int16_t kExtendedVersion = -2;

std::vector<uint8_t> bytesOf(Handle data) {
  const auto* bytes = reinterpret_cast<const uint8_t*>(*data);
  return {bytes, bytes + standin::sizeOf(data)};
}

}  // namespace

Placement placementIn(const Rect& rect, const Picture& picture) {
  return {rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top,
          0,         0,        picture.width(),        picture.height()};
}

void recordPicture(const Picture& picture, const Rect& rect) {
  standin::recordPixels(rect, [&](int32_t y, int32_t count, uint32_t* words) {
    const auto line = Picture::create(Storage::Bitmap, count, 1);
    if (!line) throw std::bad_alloc();
    Placement placement = placementIn(rect, picture);
    placement.x = 0;
    placement.y = -y;
    drawPicture(*line, picture, placement);
    line->store().read({0, 0, count}, words);
  });
}

std::vector<uint8_t> pictDataOf(Picture& picture) {
  if (picture.store().type() == qrz::kPictData && !picture.mask) {
    return bytesOf(static_cast<Handle>(picture.store().data()));
  }
  if (picture.width() > standin::kWidestRecording ||
      picture.height() > standin::kTallestRecording) {
    return {};
  }
  const Rect frame = {0, 0, static_cast<int16_t>(picture.height()),
                      static_cast<int16_t>(picture.width())};
  const OpenCPicParams parameters = {frame, k72Dpi, k72Dpi, kExtendedVersion, 0, 0};
  const std::unique_ptr<OpaquePicture*, void (*)(PicHandle)> data(OpenCPicture(&parameters),
                                                                  &KillPicture);
  if (data == nullptr) throw std::bad_alloc();
  recordPicture(picture, frame);
  ClosePicture();
  auto bytes = bytesOf(reinterpret_cast<Handle>(data.get()));
  if (standin::pictFrame(bytes).right == 0) throw std::bad_alloc();  // not recorded
  return bytes;
}

}  // namespace host
