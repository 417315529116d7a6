#include "host/core/picture.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <new>

#include "host/core/runtime.h"

namespace host {
namespace {

/// Masks that have masks, and so on; nobody needs as many.
constexpr int32_t kLongestMaskChain = 100;

}  // namespace

Ref<Picture> Picture::create(Storage storage, int32_t width, int32_t height, int32_t depth) {
  try {
    auto store = newPixelStore(storage, width, height, depth);
    if (store == nullptr) return nullptr;
    return makeObject<Picture>(std::move(store));
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

Picture::Picture(std::unique_ptr<PixelStore> store) : Object("Picture"), store_(std::move(store)) {}

Picture::~Picture() {
  // A mask can have a mask, and so on; freed one by one, not one in the other.
  Ref<Picture> next = std::move(mask);
  while (next && next->references() == 1) next = std::exchange(next->mask, nullptr);
  if (locks_ > 0) runtime().reportMisuse("freed while locked: " + describe());
}

std::string Picture::describe() const {
  return "Picture " + std::to_string(width()) + "x" + std::to_string(height()) + " (" +
         store_->name() + ")";
}

std::vector<uint32_t> Picture::pixels() const {
  const auto rowWords = static_cast<size_t>(width());
  std::vector<uint32_t> words(rowWords * static_cast<size_t>(height()));
  for (int32_t y = 0; y < height(); ++y) {
    store_->read({0, y, width()}, words.data() + static_cast<size_t>(y) * rowWords);
  }
  return words;
}

void Picture::setPixels(const std::vector<uint32_t>& words) {
  const auto rowWords = static_cast<size_t>(width());
  for (int32_t y = 0; y < height(); ++y) {
    store_->write({0, y, width()}, words.data() + static_cast<size_t>(y) * rowWords);
  }
}

uint32_t Picture::pixel(int32_t x, int32_t y) const {
  if (x < 0 || y < 0 || x >= width() || y >= height()) return 0;
  uint32_t word = 0;
  store_->read({x, y, 1}, &word);
  return word & 0x00FFFFFF;
}

namespace {

/// Columns or rows from `start` on, cut to 0 … size; empty if begin >= end.
struct Span {
  int32_t begin, end;
};

Span cut(int32_t start, int32_t length, int32_t size) {
  const int64_t end = static_cast<int64_t>(start) + length;
  return {std::clamp(start, 0, size), static_cast<int32_t>(std::clamp<int64_t>(end, 0, size))};
}

}  // namespace

void Picture::fill(int32_t x, int32_t y, int32_t width, int32_t height, uint32_t color) {
  const Span columns = cut(x, width, this->width());
  const Span rows = cut(y, height, this->height());
  if (columns.begin >= columns.end) return;
  const int32_t count = columns.end - columns.begin;
  const std::vector<uint32_t> row(static_cast<size_t>(count), color & 0x00FFFFFF);
  for (int32_t line = rows.begin; line < rows.end; ++line) {
    store_->write({columns.begin, line, count}, row.data());
  }
}

void Picture::lock(qrz::PictureDescription& description) {
  ++locks_;
  description = {
      store_->type(), store_->data(), width(), height(), {static_cast<uint32_t>(depth()), 0}};
}

void Picture::unlock() {
  if (locks_ == 0) {
    runtime().reportMisuse("unlocked without a lock: " + describe());
    return;
  }
  --locks_;
}

void Picture::clearCache() {
  if (auto taken = store_->afterChange()) store_ = std::move(taken);
}

namespace {

/// `alpha` parts of 255 of the upper colour over the lower one.
uint32_t blend(uint32_t lower, uint32_t upper, uint32_t alpha) {
  uint32_t result = 0;
  for (const int32_t shift : {0, 8, 16}) {
    const uint32_t low = lower >> shift & 0xFF;
    const uint32_t high = upper >> shift & 0xFF;
    result |= (high * alpha + low * (255 - alpha) + 127) / 255 << shift;
  }
  return result;
}

/// Source coordinate of destination step i, or -1 outside the source.
int32_t sourceAt(int32_t i, int32_t length, int32_t sourceStart, int32_t sourceLength,
                 int32_t sourceSize) {
  const int64_t position =
      sourceStart + static_cast<int64_t>(i) * sourceLength / std::max(length, 1);
  return position >= 0 && position < sourceSize ? static_cast<int32_t>(position) : -1;
}

/// What is left of `size` from `start` on; a start may be any number.
int32_t restFrom(int32_t start, int32_t size) {
  const int64_t rest = static_cast<int64_t>(size) - start;
  return static_cast<int32_t>(std::min<int64_t>(rest, INT32_MAX));
}

/// One row of a picture, read when asked for another one than before.
class RowReader {
 public:
  explicit RowReader(const Picture& picture)
      : picture_(picture), words_(static_cast<size_t>(picture.width())) {}

  /// Null outside the picture.
  const uint32_t* row(int32_t y) {
    if (y < 0 || y >= picture_.height()) return nullptr;
    if (y != current_) picture_.store().read({0, y, picture_.width()}, words_.data());
    current_ = y;
    return words_.data();
  }

 private:
  const Picture& picture_;
  std::vector<uint32_t> words_;
  int32_t current_ = -1;
};

}  // namespace

void setMask(Picture& picture, Ref<Picture> mask) {
  int32_t links = 0;
  for (const Picture* link = mask.get(); link != nullptr; link = link->mask.get()) {
    if (link == &picture) raise("OutOfBoundsException", "A picture cannot be its own mask.");
    if (++links > kLongestMaskChain) raise("OutOfBoundsException", "Too many masks of masks.");
  }
  picture.mask = std::move(mask);
}

namespace {

/// The same pixels and mask in a picture of its own.
Ref<Picture> duplicate(const Picture& picture) {
  auto copy = Picture::create(Storage::Bitmap, picture.width(), picture.height());
  if (!copy) throw std::bad_alloc();
  copy->setPixels(picture.pixels());
  copy->mask = picture.mask;
  return copy;
}

}  // namespace

void drawPicture(Picture& destination, const Picture& source, const Placement& placement) {
  // Rows that are overwritten must not be read again.
  if (&source == &destination) return drawPicture(destination, *duplicate(source), placement);
  Placement p = placement;
  if (p.sourceWidth == kUpToTheEdge) p.sourceWidth = restFrom(p.sourceX, source.width());
  if (p.sourceHeight == kUpToTheEdge) p.sourceHeight = restFrom(p.sourceY, source.height());
  const Span columns = cut(p.x, p.width, destination.width());
  const Span rows = cut(p.y, p.height, destination.height());
  if (columns.begin >= columns.end) return;
  RowReader sourceRows(source);
  RowReader maskRows(source.mask ? *source.mask : source);
  const int32_t count = columns.end - columns.begin;
  std::vector<uint32_t> row(static_cast<size_t>(count));
  for (int32_t y = rows.begin; y < rows.end; ++y) {
    const int32_t sy = sourceAt(y - p.y, p.height, p.sourceY, p.sourceHeight, source.height());
    const uint32_t* words = sourceRows.row(sy);
    const uint32_t* mask = source.mask ? maskRows.row(sy) : nullptr;
    if (words == nullptr) continue;
    destination.store().read({columns.begin, y, count}, row.data());
    for (int32_t x = columns.begin; x < columns.end; ++x) {
      const int32_t sx = sourceAt(x - p.x, p.width, p.sourceX, p.sourceWidth, source.width());
      if (sx < 0) continue;
      const bool masked = mask != nullptr && sx < source.mask->width();
      const uint32_t alpha = masked ? mask[sx] >> 8 & 0xFF : 255;
      uint32_t& pixel = row[static_cast<size_t>(x - columns.begin)];
      pixel = alpha == 255 ? words[sx] & 0x00FFFFFF : blend(pixel, words[sx], alpha);
    }
    destination.store().write({columns.begin, y, count}, row.data());
  }
}

namespace {

/// The steps of a line along its longer axis at which the pen can touch the
/// picture, of `steps` in all: the axis starts at `start`, goes up or down by
/// one a step, and the picture covers 0 to size - 1.
struct Steps {
  int64_t first, last;
};

Steps visibleSteps(int64_t start, bool up, int64_t steps, int64_t size, int64_t pen) {
  const int64_t lowest = 1 - pen;
  const int64_t enter = up ? lowest - start : start - (size - 1);
  const int64_t leave = up ? size - 1 - start : start - lowest;
  return {std::max<int64_t>(enter, 0), std::min(leave, steps)};
}

}  // namespace

void drawLine(Picture& picture, int32_t x1, int32_t y1, int32_t x2, int32_t y2) {
  const Pen& pen = picture.pen;
  const int64_t dx = static_cast<int64_t>(x2) - x1;
  const int64_t dy = static_cast<int64_t>(y2) - y1;
  const auto steps = std::max<int64_t>({std::abs(dx), std::abs(dy), 1});
  // The longer axis advances by one pixel a step, the other by the rounded share.
  const auto at = [steps](int32_t start, int64_t distance, int64_t i) {
    const double share = static_cast<double>(distance) * static_cast<double>(i);
    return static_cast<int32_t>(start + std::llround(share / static_cast<double>(steps)));
  };
  const Steps visible = std::abs(dx) >= std::abs(dy)
                            ? visibleSteps(x1, dx > 0, steps, picture.width(), pen.width)
                            : visibleSteps(y1, dy > 0, steps, picture.height(), pen.height);
  for (int64_t i = visible.first; i <= visible.last; ++i) {
    picture.fill(at(x1, dx, i), at(y1, dy, i), pen.width, pen.height, pen.color);
  }
}

Graphics::Graphics(Ref<Picture> target) : Object("Graphics"), picture_(std::move(target)) {}

std::string Graphics::describe() const { return "Graphics of " + picture_->describe(); }

}  // namespace host
