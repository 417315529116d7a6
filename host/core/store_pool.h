// Blocks of memory for pixel stores. A 32-bit C library maps every block above
// 512 KiB anew, and first touching fresh pages costs more per pixel than nearly
// every member; so blocks are kept for the next store of the same size.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace host {

/// Under the address sanitizer nothing is kept, so that it sees every use after
/// the end.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool kRecyclesStores = false;
#elif defined(__has_feature)
inline constexpr bool kRecyclesStores = !__has_feature(address_sanitizer);
#else
inline constexpr bool kRecyclesStores = true;
#endif

/// What is kept at most, of the 4 GiB of a process: two pictures of 4096 x 4096.
inline constexpr size_t kMostKeptBytes = size_t{144} << 20;

/// Takes back a block of newStoreBlock: keeps it or frees it.
void recycleStoreBlock(uint8_t* block, size_t size);

struct StoreBlockDeleter {
  size_t size = 0;
  void operator()(uint8_t* block) const { recycleStoreBlock(block, size); }
};

/// Goes back at its end. Who releases it calls recycleStoreBlock.
using StoreBlock = std::unique_ptr<uint8_t, StoreBlockDeleter>;

/// A block of `size` bytes, which may hold anything. Null without memory.
StoreBlock newStoreBlock(size_t size);

}  // namespace host
