#include "host/core/pixel_store.h"

#include <cstring>
#include <map>
#include <type_traits>
#include <vector>

#include "host/core/runtime.h"
#include "host/core/store_pool.h"
#include "platform/standin/standin.h"
#include "platform/standin/x555.h"
#include "plugin/binding/description.h"

namespace host {
namespace {

constexpr uint32_t kWhite = 0x00FFFFFF;

/// More than any 32-bit process can hold twice.
constexpr int64_t kLargestStore = int64_t{1} << 30;

/// Null if the block is too large or there is no memory.
StoreBlock allocate(int64_t rowBytes, int32_t height) {
  if (rowBytes > kLargestStore / height) return nullptr;
  return newStoreBlock(static_cast<size_t>(rowBytes * height));
}

/// What lies between the pixels of a row and the next row becomes 0.
void clearRowEnds(uint8_t* bytes, int64_t rowBytes, int32_t height, int64_t pixelBytes) {
  for (int32_t y = 0; y < height; ++y, bytes += rowBytes) {
    memset(bytes + pixelBytes, 0, static_cast<size_t>(rowBytes - pixelBytes));
  }
}

/// 0xPPRRGGBB to bytes P, R, G, B and back: the byte order turned round.
void copySwapped(void* to, const void* from, int32_t count) {
  const auto* source = static_cast<const uint8_t*>(from);
  auto* destination = static_cast<uint8_t*>(to);
  for (int32_t i = 0; i < count; ++i, source += 4, destination += 4) {
    uint32_t word = 0;
    memcpy(&word, source, 4);
    word = __builtin_bswap32(word);
    memcpy(destination, &word, 4);
  }
}

void read24(uint32_t* words, const uint8_t* row, int32_t count) {
  for (int32_t x = 0; x < count; ++x, row += 3) {
    words[x] = static_cast<uint32_t>(row[0] << 16 | row[1] << 8 | row[2]);
  }
}

void write24(uint8_t* row, const uint32_t* words, int32_t count) {
  for (int32_t x = 0; x < count; ++x, row += 3) {
    row[0] = static_cast<uint8_t>(words[x] >> 16);
    row[1] = static_cast<uint8_t>(words[x] >> 8);
    row[2] = static_cast<uint8_t>(words[x]);
  }
}

void read16(uint32_t* words, const uint8_t* row, int32_t count) {
  for (int32_t x = 0; x < count; ++x, row += 2) {
    words[x] = standin::rgbOf555(static_cast<uint32_t>(row[0] << 8 | row[1]));
  }
}

void write16(uint8_t* row, const uint32_t* words, int32_t count) {
  for (int32_t x = 0; x < count; ++x, row += 2) {
    const uint32_t rgb = words[x];
    const uint32_t word = (rgb >> 19 & 31) << 10 | (rgb >> 11 & 31) << 5 | (rgb >> 3 & 31);
    row[0] = static_cast<uint8_t>(word >> 8);
    row[1] = static_cast<uint8_t>(word);
  }
}

struct WorldDeleter {
  void operator()(GWorldPtr world) const;
};
using SharedWorld = std::shared_ptr<std::remove_pointer_t<GWorldPtr>>;

/// The worlds that belong to stores. Several stores may show one of them; it
/// lives as long as they do.
std::map<GWorldPtr, SharedWorld::weak_type>& ownedWorlds() {
  static auto& worlds = *new std::map<GWorldPtr, SharedWorld::weak_type>;
  return worlds;
}

void WorldDeleter::operator()(GWorldPtr world) const {
  ownedWorlds().erase(world);
  standin::disposeGWorld(world);
}

/// Null if nobody owns the world.
SharedWorld shareWorld(GWorldPtr world, bool owned) {
  const auto found = ownedWorlds().find(world);
  if (found != ownedWorlds().end()) return found->second.lock();
  if (!owned) return nullptr;
  SharedWorld shared(world, WorldDeleter());
  ownedWorlds()[world] = shared;
  return shared;
}

class GWorldStore final : public PixelStore {
 public:
  GWorldStore(GWorldPtr world, SharedWorld owner)
      : world_(world), owner_(std::move(owner)), pixels_(standin::pixelsOf(world)) {}

  [[nodiscard]] int32_t type() const override { return qrz::kGWorld; }
  [[nodiscard]] void* data() override { return world_; }
  [[nodiscard]] std::string name() const override {
    return "GWorld " + std::to_string(pixels_.depth);
  }
  [[nodiscard]] int32_t width() const override { return pixels_.width; }
  [[nodiscard]] int32_t height() const override { return pixels_.height; }
  [[nodiscard]] int32_t depth() const override { return pixels_.depth; }

  void read(const Run& run, uint32_t* words) const override {
    const uint8_t* bytes = address(run);
    if (pixels_.depth == 32) copySwapped(words, bytes, run.count);
    if (pixels_.depth == 24) read24(words, bytes, run.count);
    if (pixels_.depth == 16) read16(words, bytes, run.count);
  }
  void write(const Run& run, const uint32_t* words) override {
    uint8_t* bytes = address(run);
    if (pixels_.depth == 32) copySwapped(bytes, words, run.count);
    if (pixels_.depth == 24) write24(bytes, words, run.count);
    if (pixels_.depth == 16) write16(bytes, words, run.count);
  }

 private:
  [[nodiscard]] uint8_t* address(const Run& run) const {
    return pixels_.base + static_cast<ptrdiff_t>(run.y) * pixels_.rowBytes +
           run.x * (pixels_.depth / 8);
  }

  GWorldPtr world_;
  SharedWorld owner_;
  standin::Pixels pixels_;
};

struct ContextDeleter {
  void operator()(CGContextRef context) const { standin::disposeBitmapContext(context); }
};
using OwnedContext = std::unique_ptr<std::remove_pointer_t<CGContextRef>, ContextDeleter>;

class ContextStore final : public PixelStore {
 public:
  ContextStore(StoreBlock bytes, OwnedContext context, int32_t width, int32_t height,
               int32_t rowBytes)
      : bytes_(std::move(bytes)),
        context_(std::move(context)),
        width_(width),
        height_(height),
        rowBytes_(rowBytes) {}

  [[nodiscard]] int32_t type() const override { return qrz::kBitmapContext; }
  [[nodiscard]] void* data() override { return context_.get(); }
  [[nodiscard]] std::string name() const override { return "bitmap context"; }
  [[nodiscard]] int32_t width() const override { return width_; }
  [[nodiscard]] int32_t height() const override { return height_; }

  void read(const Run& run, uint32_t* words) const override {
    copySwapped(words, address(run), run.count);
  }
  void write(const Run& run, const uint32_t* words) override {
    copySwapped(address(run), words, run.count);
  }
  /// The host takes the finished pixels over as a GWorld, without a copy.
  std::unique_ptr<PixelStore> afterChange() override {
    GWorldPtr world =
        standin::newGWorldOver(bytes_.get(), width_, height_, 32, rowBytes_, recycleStoreBlock);
    if (world == nullptr) return nullptr;
    static_cast<void>(bytes_.release());
    return gworldStore(world, true);
  }

 private:
  [[nodiscard]] uint8_t* address(const Run& run) const {
    return bytes_.get() + static_cast<ptrdiff_t>(run.y) * rowBytes_ + 4 * run.x;
  }

  StoreBlock bytes_;
  OwnedContext context_;
  int32_t width_;
  int32_t height_;
  int32_t rowBytes_;
};

class BitmapStore final : public PixelStore {
 public:
  BitmapStore(StoreBlock bytes, int32_t width, int32_t height, int64_t rowBytes)
      : bytes_(std::move(bytes)), rows_(static_cast<size_t>(height)) {
    for (size_t y = 0; y < rows_.size(); ++y) {
      rows_[y] = bytes_.get() + static_cast<ptrdiff_t>(y) * static_cast<ptrdiff_t>(rowBytes);
    }
    record_.width = width;
    record_.height = height;
    record_.ready = 1;
    record_.rowTable = rows_.data();
  }

  [[nodiscard]] int32_t type() const override { return qrz::kHostBitmap; }
  [[nodiscard]] void* data() override { return &record_; }
  [[nodiscard]] std::string name() const override { return "bitmap"; }
  [[nodiscard]] int32_t width() const override { return record_.width; }
  [[nodiscard]] int32_t height() const override { return record_.height; }

  void read(const Run& run, uint32_t* words) const override {
    memcpy(words, address(run), 4 * static_cast<size_t>(run.count));
  }
  void write(const Run& run, const uint32_t* words) override {
    memcpy(address(run), words, 4 * static_cast<size_t>(run.count));
  }

 private:
  [[nodiscard]] uint8_t* address(const Run& run) const {
    return rows_[static_cast<size_t>(run.y)] + 4 * run.x;
  }

  StoreBlock bytes_;
  std::vector<uint8_t*> rows_;
  qrz::HostBitmap record_{};
};

std::unique_ptr<PixelStore> newContextStore(StoreBlock bytes, int32_t width, int32_t height,
                                            int32_t rowBytes) {
  OwnedContext context(
      standin::newBitmapContext(bytes.get(), static_cast<size_t>(rowBytes), 8, 32));
  if (context == nullptr) return nullptr;
  return std::make_unique<ContextStore>(std::move(bytes), std::move(context), width, height,
                                        rowBytes);
}

std::unique_ptr<PixelStore> newGWorldStore(StoreBlock bytes, int32_t width, int32_t height,
                                           int32_t depth, int32_t rowBytes) {
  GWorldPtr world =
      standin::newGWorldOver(bytes.get(), width, height, depth, rowBytes, recycleStoreBlock);
  if (world == nullptr) return nullptr;
  static_cast<void>(bytes.release());
  return gworldStore(world, true);
}

void fillWhite(PixelStore& store) {
  const std::vector<uint32_t> row(static_cast<size_t>(store.width()), kWhite);
  for (int32_t y = 0; y < store.height(); ++y) store.write({0, y, store.width()}, row.data());
}

}  // namespace

std::unique_ptr<PixelStore> newPixelStore(Storage storage, int32_t width, int32_t height,
                                          int32_t depth) {
  if (width < 1 || height < 1) return nullptr;
  if (storage != Storage::GWorld || (depth != 24 && depth != 16)) depth = 32;
  const int64_t rowBytes = standin::rowBytesFor(width, depth);
  StoreBlock bytes = allocate(rowBytes, height);
  if (bytes == nullptr) return nullptr;
  const bool blank = runtime().settings.blanksNewPictures;
  if (blank) clearRowEnds(bytes.get(), rowBytes, height, int64_t{width} * (depth / 8));
  const auto stride = static_cast<int32_t>(rowBytes);
  std::unique_ptr<PixelStore> store;
  switch (storage) {
    case Storage::GWorld:
      store = newGWorldStore(std::move(bytes), width, height, depth, stride);
      break;
    case Storage::Context:
      store = newContextStore(std::move(bytes), width, height, stride);
      break;
    case Storage::Bitmap:
      store = std::make_unique<BitmapStore>(std::move(bytes), width, height, rowBytes);
      break;
  }
  if (store != nullptr && blank) fillWhite(*store);
  return store;
}

std::unique_ptr<PixelStore> gworldStore(GWorldPtr world, bool owned) {
  SharedWorld owner = shareWorld(world, owned);  // disposes of the world without memory
  return std::make_unique<GWorldStore>(world, std::move(owner));
}

}  // namespace host
