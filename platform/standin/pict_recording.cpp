// Recording PICT data. At any moment the data is a whole picture: it ends with
// its last opcode, which whatever is recorded next overwrites.

#include <cstring>
#include <new>

#include "platform/standin/pict_format.h"
#include "platform/standin/pict_writer.h"
#include "platform/standin/state.h"

namespace standin {
namespace {

struct Recording {
  Handle data;  ///< null: none is open
  bool failed;  ///< nothing more is recorded
};
Recording recording{};

constexpr int16_t kParametersVersion = -2;
constexpr long kEndSize = 2;

bool isTooLarge(const Box& box) {
  return box.width() > kWidestRecording || box.height() > kTallestRecording;
}

/// A coordinate at 72 pixels per inch, rounded.
int32_t at72Dpi(int32_t coordinate, int32_t resolution) {
  const int64_t product = static_cast<int64_t>(coordinate) * pict::k72Dpi;
  const int64_t half = product < 0 ? -resolution / 2 : resolution / 2;
  const int64_t result = (product + half) / resolution;
  return static_cast<int32_t>(std::clamp<int64_t>(result, INT16_MIN, INT16_MAX));
}

/// The picture's frame; empty if it cannot be recorded.
Box frameFor(const OpenCPicParams& parameters) {
  const Box source = boxOf(parameters.srcRect);
  if (parameters.version != kParametersVersion || parameters.hRes <= 0 || parameters.vRes <= 0 ||
      source.isEmpty() || isTooLarge(source)) {
    return {};
  }
  const Box frame{at72Dpi(source.left, parameters.hRes), at72Dpi(source.top, parameters.vRes),
                  at72Dpi(source.right, parameters.hRes), at72Dpi(source.bottom, parameters.vRes)};
  return isTooLarge(frame) ? Box{} : frame;
}

/// Shows whoever looks at the frame that the picture could not be recorded.
void fail() {
  memset(*recording.data + pict::kFrameOffset, 0, sizeof(Rect));
  recording.failed = true;
}

}  // namespace

bool isRecording() { return recording.data != nullptr; }

void recordPixels(const Rect& place, const ReadRow& readRow) {
  const Box box = boxOf(place);
  if (!isRecording() || recording.failed || box.isEmpty()) return;
  if (isTooLarge(box)) return fail();
  const long before = sizeOf(recording.data) - kEndSize;
  resizeHandle(recording.data, before);
  PictWriter writer(recording.data);
  try {
    putPixels(writer, box, readRow);
    writer.put16(pict::kEndOfPicture);
  } catch (const std::bad_alloc&) {
    resizeHandle(recording.data, before);
    writer.put16(pict::kEndOfPicture);  // where there was one
    fail();
  }
}

void forgetRecording(Handle data) {
  if (!isRecording() || recording.data != data) return;
  recording = {};
  --held.recordings;
}

}  // namespace standin

using standin::called;
using standin::recording;

PicHandle OpenCPicture(const OpenCPicParams* parameters) {
  if (!called("OpenCPicture") || parameters == nullptr || standin::isRecording()) return nullptr;
  const standin::Box frame = standin::frameFor(*parameters);
  Handle data = frame.isEmpty() ? nullptr : standin::newHandle(0);
  if (data == nullptr) return nullptr;
  try {
    standin::PictWriter writer(data);
    standin::putPictHeader(writer, *parameters, frame);
    writer.put16(standin::pict::kEndOfPicture);
  } catch (const std::bad_alloc&) {
    standin::disposeHandle(data);
    return nullptr;
  }
  recording = {data, false};
  ++standin::held.recordings;
  return reinterpret_cast<PicHandle>(data);
}

void ClosePicture() {
  called("ClosePicture");
  if (!standin::isRecording()) return;
  standin::trimHandle(recording.data);
  const long size = standin::sizeOf(recording.data);
  (*recording.data)[0] = static_cast<char>(size >> 8);
  (*recording.data)[1] = static_cast<char>(size);
  standin::forgetRecording(recording.data);
}

void KillPicture(PicHandle picture) {
  called("KillPicture");
  standin::disposeHandle(reinterpret_cast<Handle>(picture));
}
