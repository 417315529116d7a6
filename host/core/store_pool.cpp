#include "host/core/store_pool.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace host {
namespace {

/// Below this size the C library itself uses blocks again.
constexpr size_t kSmallestKept = size_t{512} << 10;

constexpr size_t kMostBlocks = 16;

/// The blocks that wait for another use, the oldest first. It never allocates.
class StorePool {
 public:
  /// The block of this very size that was given last; null if there is none.
  uint8_t* take(size_t size) {
    for (size_t i = count_; i-- > 0;) {
      if (blocks_[i].size == size) return remove(i);
    }
    return nullptr;
  }
  /// Drops older blocks where there is no room.
  void give(uint8_t* bytes, size_t size) {
    while (count_ == kMostBlocks || (count_ > 0 && held_ + size > kMostKeptBytes)) free(remove(0));
    blocks_[count_++] = {bytes, size};
    held_ += size;
  }
  void clear() {
    while (count_ > 0) free(remove(0));
  }

 private:
  struct Block {
    uint8_t* bytes;
    size_t size;
  };

  uint8_t* remove(size_t i) {
    const Block block = blocks_[i];
    std::copy(blocks_.begin() + i + 1, blocks_.begin() + count_, blocks_.begin() + i);
    --count_;
    held_ -= block.size;
    return block.bytes;
  }

  std::array<Block, kMostBlocks> blocks_{};
  size_t count_ = 0;
  size_t held_ = 0;
};

// Without a destructor: stores that die at exit still come back.
StorePool pool;

bool isKept(size_t size) {
  return kRecyclesStores && size >= kSmallestKept && size <= kMostKeptBytes;
}

uint8_t* allocate(size_t size) { return static_cast<uint8_t*>(malloc(size)); }

}  // namespace

void recycleStoreBlock(uint8_t* block, size_t size) {
  isKept(size) ? pool.give(block, size) : free(block);
}

StoreBlock newStoreBlock(size_t size) {
  uint8_t* block = pool.take(size);
  if (block == nullptr) block = allocate(size);
  if (block == nullptr) {
    // What is kept may stand in the way.
    pool.clear();
    block = allocate(size);
  }
  return {block, {size}};
}

}  // namespace host
