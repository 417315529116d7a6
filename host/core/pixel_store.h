// The ways in which the host keeps a picture's pixels.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/platform.h"

namespace host {

enum class Storage {
  GWorld,   ///< QuickDraw GWorld of depth 32, 24 or 16
  Context,  ///< Core Graphics bitmap context
  Bitmap,   ///< the host's own bitmap record with its row table
};

/// A stretch of one row.
struct Run {
  int32_t x, y, count;
};

/// A picture's pixels in one representation. Whatever it is, they can be read
/// and written as words 0xPPRRGGBB, P being the pad byte where there is one
/// (else it reads as 0).
class PixelStore {
 public:
  PixelStore() = default;
  PixelStore(const PixelStore&) = delete;
  PixelStore& operator=(const PixelStore&) = delete;
  virtual ~PixelStore() = default;

  /// The type code and native data of a description.
  [[nodiscard]] virtual int32_t type() const = 0;
  [[nodiscard]] virtual void* data() = 0;
  /// For reports, for instance "GWorld 32".
  [[nodiscard]] virtual std::string name() const = 0;

  [[nodiscard]] virtual int32_t width() const = 0;
  [[nodiscard]] virtual int32_t height() const = 0;
  [[nodiscard]] virtual int32_t depth() const { return 32; }

  /// Whether what is written shows.
  [[nodiscard]] virtual bool isWritable() const { return true; }
  /// The run lies inside the picture; `words` holds its count of words.
  virtual void read(const Run& run, uint32_t* words) const = 0;
  virtual void write(const Run& run, const uint32_t* words) = 0;

  /// The store that takes over the pixels when the host has been told that
  /// they were changed; null if it is this one still.
  virtual std::unique_ptr<PixelStore> afterChange() { return nullptr; }
};

/// A new white store with pads 0 (unless the settings say otherwise). Depth counts
/// for GWorlds only. Null if a size is below 1 or there is no memory.
std::unique_ptr<PixelStore> newPixelStore(Storage storage, int32_t width, int32_t height,
                                          int32_t depth = 32);

/// A store that shows a GWorld made elsewhere; if it owns the world, that is
/// disposed of at its end. A world that belongs to another store is shared with
/// it, owned or not.
std::unique_ptr<PixelStore> gworldStore(GWorldPtr world, bool owned);

/// A store that holds PICT data and owns the handle. Its size is the picture's
/// frame. It shows what the data draws on white, from the first time its pixels
/// are read; without memory for them a read throws std::bad_alloc. Pixels that
/// are written to it are dropped.
std::unique_ptr<PixelStore> pictStore(Handle data);

}  // namespace host
