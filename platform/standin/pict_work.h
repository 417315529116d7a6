// How much drawing PICT data may take.
#pragma once

#include "platform/standin/pict_reader.h"
#include "platform/standin/standin.h"

namespace standin {

/// Skipping takes time in proportion to the data, but a few bytes can unpack to
/// long rows, cover the canvas, or lead a clip of many edges over it, again and
/// again. So what is unpacked and drawn is counted, in pixels and edges, and more
/// than any sensible picture needs counts as damage.
class PictWork {
 public:
  explicit PictWork(const Canvas& canvas)
      : left_(kEnoughForSmall + kLayers * static_cast<uint64_t>(canvas.width) *
                                    static_cast<uint64_t>(canvas.height)) {}

  /// Throws DamagedPict when there is no more to spend.
  void spend(uint64_t work) {
    if (work > left_) throw DamagedPict();
    left_ -= work;
  }

 private:
  static constexpr uint64_t kEnoughForSmall = uint64_t{1} << 26;
  static constexpr uint64_t kLayers = 16;

  uint64_t left_;
};

}  // namespace standin
