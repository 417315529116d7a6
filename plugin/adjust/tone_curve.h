// The frame of the tone curves: one map from channel value to channel byte for
// each channel.
#pragma once

#include <algorithm>
#include <cstring>

#include "plugin/adjust/map_channels.h"
#include "plugin/kernels/tone_line.h"
#include "plugin/pixels/convert.h"

namespace qrz {

/// slope × value + offset, what a map is about where it does not cut or wrap.
struct StraightTone {
  double slope, offset;
};

/// What three maps give for every value of a channel.
class ToneTables {
 public:
  template <typename Map>
  ToneTables(const Map& red, const Map& green, const Map& blue) {
    fill(tables_[0], red);
    green_ = areEqual(green, red) ? tables_[0] : fill(tables_[1], green);
    blue_ = areEqual(blue, red) ? tables_[0] : fill(tables_[2], blue);
  }
  ToneTables(const ToneTables&) = delete;
  ToneTables& operator=(const ToneTables&) = delete;

  [[nodiscard]] ChannelTables tables() const { return {tables_[0], green_, blue_}; }

  /// Whether the lines give the same for every value.
  [[nodiscard]] bool areOn(const ToneLines& lines) const {
    using Format = RowTableFormat;
    PixelWord greys[256];
    PixelWord expected[256];
    PixelWord mapped[256];
    for (uint32_t i = 0; i < 256; ++i) {
      greys[i] = Format::pack(i, i, i);
      expected[i] = Format::pack(tables_[0][i], green_[i], blue_[i]);
    }
    QRZ_KERNEL_CALL(toneLineRow<Format>(mapped, 256, greys, lines));
    return memcmp(mapped, expected, sizeof mapped) == 0;
  }

 private:
  /// A map's line holds all its numbers.
  template <typename Map>
  static bool areEqual(const Map& a, const Map& b) {
    return a.line().slope == b.line().slope && a.line().offset == b.line().offset;
  }
  template <typename Map>
  static const uint8_t* fill(uint8_t (&table)[256], const Map& map) {
    for (int32_t value = 0; value < 256; ++value) {
      table[value] = static_cast<uint8_t>(map(static_cast<double>(value)));
    }
    return table;
  }

  uint8_t tables_[3][256];
  const uint8_t* green_;  ///< the first table where the maps are equal
  const uint8_t* blue_;
};

/// `nudge` is added to the offset.
inline ToneLine toneLine(const StraightTone& tone, double nudge) {
  const auto single = [](double value) {
    constexpr double kMost = 1e30;
    return static_cast<float>(std::clamp(value, -kMost, kMost));
  };
  return {single(tone.slope), single(tone.offset + nudge)};
}

/// The lines serve where they may and are quicker than the tables.
struct ToneRow {
  MapChannelsRow tables;
  ToneLines lines;
  bool areLinesExact;

  template <typename Format>
  void row(PixelWord* destination, int32_t count, const PixelWord* source) const {
    if (areLinesExact && cpuLevelFor(count) < CpuLevel::AVX512) {
      QRZ_ROW_KERNEL_CALL(count, toneLineRow<Format>(destination, count, source, lines));
    } else {
      tables.row<Format>(destination, count, source);
    }
  }
};

/// A new picture with every channel passed through its map; pads 0. A map takes
/// a channel value, 0 to 255 as a double, and gives the byte that is stored; its
/// `line()` is a StraightTone. It is evaluated once for each value. Null if the
/// picture cannot be read or no new one can be made.
template <typename Map>
HostPicture mapTones(HostPicture picture, const Map& red, const Map& green, const Map& blue) {
  const ToneTables tones(red, green, blue);
  ToneRow row{{tones.tables()}, {}, false};
  // Lines in single precision serve where all 256 values come out the same; values
  // that are whole numbers, or nearly, may need a nudge to either side.
  constexpr double kNudge = 1.0 / 4096;
  for (const double nudge : {0.0, kNudge, -kNudge}) {
    row.lines = {toneLine(red.line(), nudge), toneLine(green.line(), nudge),
                 toneLine(blue.line(), nudge)};
    row.areLinesExact = tones.areOn(row.lines);
    if (row.areLinesExact) break;
  }
  return filterPicture(picture, wholePicture, row);
}

}  // namespace qrz
