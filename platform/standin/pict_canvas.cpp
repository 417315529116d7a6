#include "platform/standin/pict_canvas.h"

namespace standin {
namespace {

/// `value` of `from` parts as parts of `to`, rounded.
int32_t scaled(int32_t value, int32_t from, int32_t to) {
  const int64_t doubled = 2 * static_cast<int64_t>(value) * to + from;
  const int64_t divisor = 2 * static_cast<int64_t>(from);
  const int64_t floor = doubled >= 0 ? doubled / divisor : -((-doubled + divisor - 1) / divisor);
  return static_cast<int32_t>(std::clamp<int64_t>(floor, INT32_MIN / 4, INT32_MAX / 4));
}

/// The source position of step `i` of `steps` over `length` positions.
int32_t stepOver(int32_t i, int32_t steps, int32_t length) {
  return static_cast<int32_t>(static_cast<int64_t>(i) * length / steps);
}

}  // namespace

Box onCanvas(const Box& box, const Box& space, const Canvas& canvas) {
  return {scaled(box.left - space.left, space.width(), canvas.width),
          scaled(box.top - space.top, space.height(), canvas.height),
          scaled(box.right - space.left, space.width(), canvas.width),
          scaled(box.bottom - space.top, space.height(), canvas.height)};
}

ScaledDrawing::ScaledDrawing(const Canvas& canvas, const Box& source, const Box& target,
                             const Box& clip)
    : canvas_(canvas),
      source_(source),
      target_(target),
      visible_(intersect(intersect(target, clip), {0, 0, canvas.width, canvas.height})),
      nextRow_(visible_.top) {
  if (source.isEmpty() || visible_.isEmpty()) visible_ = {};
  for (int32_t x = visible_.left; x < visible_.right; ++x) {
    sourceColumns_.push_back(source.left +
                             stepOver(x - target.left, target.width(), source.width()));
  }
}

int32_t ScaledDrawing::sourceRow(int32_t y) const {
  return source_.top + stepOver(y - target_.top, target_.height(), source_.height());
}

void ScaledDrawing::drawRow(int32_t y, int32_t left, std::span<const uint32_t> words) {
  for (; nextRow_ < visible_.bottom && sourceRow(nextRow_) <= y; ++nextRow_) {
    if (sourceRow(nextRow_) < y) continue;
    uint32_t* pixel =
        canvas_.words + static_cast<ptrdiff_t>(nextRow_) * canvas_.width + visible_.left;
    for (const int32_t column : sourceColumns_) {
      const auto i = static_cast<size_t>(column - left);
      if (column >= left && i < words.size()) *pixel = words[i];
      ++pixel;
    }
  }
}

}  // namespace standin
