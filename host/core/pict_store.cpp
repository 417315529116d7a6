#include <algorithm>
#include <new>
#include <span>
#include <vector>

#include "host/core/pixel_store.h"
#include "platform/standin/standin.h"
#include "plugin/binding/description.h"

namespace host {
namespace {

constexpr uint32_t kWhite = 0x00FFFFFF;
/// Pixels; more would not fit in a 32-bit process with a copy of them.
constexpr uint64_t kLargestDrawn = uint64_t{1} << 28;

class PictStore final : public PixelStore {
 public:
  explicit PictStore(Handle handle) : handle_(handle) {
    const Rect frame = standin::pictFrame(bytes());
    width_ = std::max(frame.right - frame.left, 0);
    height_ = std::max(frame.bottom - frame.top, 0);
  }
  ~PictStore() override { standin::disposeHandle(handle_); }

  [[nodiscard]] int32_t type() const override { return qrz::kPictData; }
  [[nodiscard]] void* data() override { return handle_; }
  [[nodiscard]] std::string name() const override { return "PICT data"; }
  [[nodiscard]] int32_t width() const override { return width_; }
  [[nodiscard]] int32_t height() const override { return height_; }

  void read(const Run& run, uint32_t* words) const override {
    if (drawn_.empty()) draw();
    const auto start = static_cast<ptrdiff_t>(run.y) * width_ + run.x;
    std::copy_n(drawn_.begin() + start, run.count, words);
  }
  [[nodiscard]] bool isWritable() const override { return false; }
  void write(const Run& /*run*/, const uint32_t* /*words*/) override {}
  /// The data may have been changed.
  std::unique_ptr<PixelStore> afterChange() override {
    drawn_ = {};
    return nullptr;
  }

 private:
  [[nodiscard]] std::span<const uint8_t> bytes() const {
    return {reinterpret_cast<const uint8_t*>(*handle_),
            static_cast<size_t>(standin::sizeOf(handle_))};
  }

  void draw() const {
    const uint64_t size = static_cast<uint64_t>(width_) * static_cast<uint64_t>(height_);
    if (size > kLargestDrawn) throw std::bad_alloc();
    std::vector<uint32_t> words(static_cast<size_t>(size), kWhite);
    standin::drawPict(bytes(), {words.data(), width_, height_});
    drawn_ = std::move(words);
  }

  Handle handle_;
  int32_t width_ = 0;
  int32_t height_ = 0;
  mutable std::vector<uint32_t> drawn_;  ///< empty before the first read
};

}  // namespace

std::unique_ptr<PixelStore> pictStore(Handle data) { return std::make_unique<PictStore>(data); }

}  // namespace host
