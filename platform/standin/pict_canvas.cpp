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

int32_t columnOnCanvas(int32_t x, const Box& space, const Canvas& canvas) {
  return scaled(x - space.left, space.width(), canvas.width);
}

int32_t rowOnCanvas(int32_t y, const Box& space, const Canvas& canvas) {
  return scaled(y - space.top, space.height(), canvas.height);
}

Box boxOnCanvas(const Box& box, const Box& space, const Canvas& canvas) {
  return {columnOnCanvas(box.left, space, canvas), rowOnCanvas(box.top, space, canvas),
          columnOnCanvas(box.right, space, canvas), rowOnCanvas(box.bottom, space, canvas)};
}

ScaledDrawing::ScaledDrawing(const Canvas& canvas, const Box& source, const Box& target,
                             ClipRows& clip, PictWork& work)
    : canvas_(canvas),
      source_(source),
      target_(target),
      clip_(clip),
      visible_(intersect(target, clip.bounds())),
      nextRow_(visible_.top) {
  if (source.isEmpty() || visible_.isEmpty()) {
    visible_ = {};
    return;
  }
  work.spend(static_cast<uint64_t>(visible_.width()) * static_cast<uint64_t>(visible_.height()));
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
    if (sourceRow(nextRow_) == y) drawOnce(left, words);
  }
}

void ScaledDrawing::drawOnce(int32_t left, std::span<const uint32_t> words) {
  const Edges& edges = clip_.at(nextRow_);
  uint32_t* row = canvas_.words + static_cast<ptrdiff_t>(nextRow_) * canvas_.width;
  // From the stretch on that ends right of the first visible column.
  const auto first = std::ranges::upper_bound(edges, visible_.left) - edges.begin();
  for (auto i = static_cast<size_t>(first) / 2 * 2; i < edges.size() && edges[i] < visible_.right;
       i += 2) {
    const int32_t end = std::min(edges[i + 1], visible_.right);
    for (int32_t x = std::max(edges[i], visible_.left); x < end; ++x) {
      const int32_t column = sourceColumns_[static_cast<size_t>(x - visible_.left)] - left;
      if (column >= 0 && static_cast<size_t>(column) < words.size()) {
        row[x] = words[static_cast<size_t>(column)];
      }
    }
  }
}

}  // namespace standin
