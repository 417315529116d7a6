// Every row kernel at every CPU level in every pixel format, byte for byte: rows
// of all lengths, at all addresses, that end where memory ends.
//
// A kernel's check runs it once and says, pixel by pixel, what is to come out.

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <limits>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "plugin/kernels/channels.h"
#include "plugin/kernels/colored_areas.h"
#include "plugin/kernels/compare.h"
#include "plugin/kernels/count_color.h"
#include "plugin/kernels/embedded_mask.h"
#include "plugin/kernels/histogram.h"
#include "plugin/kernels/invert.h"
#include "plugin/kernels/invert_gray.h"
#include "plugin/kernels/lut3d.h"
#include "plugin/kernels/map_channels.h"
#include "plugin/kernels/replace_color.h"
#include "plugin/kernels/saturation.h"
#include "plugin/kernels/sepia.h"
#include "plugin/kernels/tint.h"
#include "plugin/kernels/tone_line.h"
#include "plugin/kernels/triplets.h"
#include "plugin/kernels/waveform.h"
#include "plugin/kernels/window_hash.h"
#include "plugin/pixels/streamed_rows.h"
#include "tests/support/kernel_call.h"
#include "tests/support/lut3d_reference.h"

/// A call of a kernel at the chosen level, for later.
#define QRZ_KERNEL_LATER(...) [&] { return QRZ_KERNEL_CALL(__VA_ARGS__); }
/// The same of one that takes a row, its length and other rows, and then what stands here.
#define QRZ_ROW_KERNEL(name, ...) \
  [&](const auto&... rows) { QRZ_KERNEL_CALL(name(rows... __VA_OPT__(, ) __VA_ARGS__)); }

namespace qrz {
namespace {

using host::Chance;
using host::each;
using host::GuardedRow;
using host::KernelCall;
using host::Pixel;

// --- Rows of pixels made of others ---------------------------------------------

template <typename Format>
void invert(KernelCall& call) {
  call.filter(QRZ_ROW_KERNEL(invertRow<Format>),
              [](const Pixel& p) { return each([](int64_t value) { return 255 - value; }, p); });
}

template <typename Format>
void invertGray(KernelCall& call) {
  call.filter(QRZ_ROW_KERNEL(invertGrayRow<Format>), [](const Pixel& p) {
    return each([&](int64_t value) { return p.isGrey() ? 255 - value : value; }, p);
  });
}

template <typename Format>
void replaceChannel(KernelCall& call) {
  const auto taken = call.chance.oneOf<Pixel>({{255, 0, 0}, {0, 255, 0}, {0, 0, 255}});
  const auto choose = [](int64_t isTaken, int64_t a, int64_t b) { return isTaken != 0 ? b : a; };
  call.filter<2>(QRZ_ROW_KERNEL(replaceChannelRow<Format>, call.word(taken)),
                 [&](const Pixel& a, const Pixel& b) { return each(choose, taken, a, b); });
}

template <typename Format>
void combine(KernelCall& call) {
  call.filter<3>(QRZ_ROW_KERNEL(combineRow<Format>),
                 [](const Pixel& red, const Pixel& green, const Pixel& blue) -> Pixel {
                   return {red.red, green.green, blue.blue};
                 });
}

template <typename Format>
void merge(KernelCall& call) {
  const auto larger = [](int64_t a, int64_t b) { return std::max(a, b); };
  call.filter<2>(QRZ_ROW_KERNEL(mergeRow<Format>),
                 [&](const Pixel& a, const Pixel& b) { return each(larger, a, b); });
}

template <typename Format>
void readMask(KernelCall& call) {
  const uint32_t readable = call.chance.oneOf({0x7FU, 0xFFU});
  const uint32_t flip = call.chance.oneOf({0U, 255U});
  call.filter(QRZ_ROW_KERNEL(readMaskRow<Format>, readable, flip), [&](const Pixel& p) -> Pixel {
    const int64_t value = p.pad % (readable + 1);
    const int64_t grey = flip != 0 ? 255 - value : value;
    return {grey, grey, grey};
  });
}

/// Into the row itself or another one.
template <typename Format>
void writeMask(KernelCall& call) {
  const uint32_t flip = call.chance.oneOf({0U, 255U});
  GuardedRow& pixels = call.pixels();
  GuardedRow& mask = call.chance.oneIn(2) ? pixels : call.pixels();
  for (int32_t x = 0; x < call.count; ++x) {
    Pixel pixel = call.pixel(pixels, x);
    const int64_t value = call.pixel(mask, x).red;
    pixel.pad = flip != 0 ? 255 - value : value;
    pixels.expect(x, call.word(pixel));
  }
  call.run(QRZ_KERNEL_LATER(writeMaskRow<Format>(pixels, call.count, mask, flip)));
}

template <typename Format>
void replaceColor(KernelCall& call) {
  const Pixel found{call.chance.byte(), call.chance.byte(), 255};
  call.filter(QRZ_ROW_KERNEL(replaceColorRow<Format>, call.word(call.color), call.word(found)),
              [&](const Pixel& p) -> Pixel {
                return p.hasColorOf(call.color) ? found : Pixel{p.red, p.green, p.blue};
              });
}

template <typename Format>
void extractColor(KernelCall& call) {
  const Pixel found{call.chance.byte(), call.chance.byte(), 255};
  const Pixel others{call.chance.byte(), 0, call.chance.byte()};
  call.filter(QRZ_ROW_KERNEL(extractColorRow<Format>, call.word(call.color), call.word(found),
                             call.word(others)),
              [&](const Pixel& p) { return p.hasColorOf(call.color) ? found : others; });
}

template <typename Format>
void mapChannels(KernelCall& call) {
  const auto newTable = [&]() -> GuardedRow& {
    GuardedRow& table = call.row(256, 1, 1);
    for (int32_t i = 0; i < 256; ++i) table.set(i, static_cast<uint8_t>(call.chance.byte()));
    return table;
  };
  const GuardedRow& red = newTable();
  const GuardedRow& green = call.chance.oneIn(3) ? red : newTable();
  const GuardedRow& blue = call.chance.oneIn(3) ? green : newTable();
  const ChannelTables tables{red, green, blue};
  const auto at = [](const uint8_t* table, int64_t value) { return int64_t{table[value]}; };
  call.filter(QRZ_ROW_KERNEL(mapChannelsRow<Format>, tables),
              [&](const Pixel& p) { return each(at, tables, p); });
}

template <typename Format>
void toneLine(KernelCall& call) {
  const auto anyLine = [&]() -> ToneLine {
    const auto number = [&] { return static_cast<float>(call.chance.between(-9999, 9999)); };
    return {call.chance.oneOf({0.0F, 1e-4F, 3e-4F, 0.03F, 10.0F}) * number(), number() / 30};
  };
  const ToneLines lines{anyLine(), anyLine(), anyLine()};
  const auto on = [](const ToneLine& line, int64_t value) {
    return line.slope * static_cast<float>(value) + line.offset;
  };
  call.filter(QRZ_ROW_KERNEL(toneLineRow<Format>, lines),
              [&](const Pixel& p) { return each(on, lines, p); });
}

template <typename Format>
void saturation(KernelCall& call) {
  const int32_t size =
      call.chance.oneOf({0, 1, 254, 255, 256, 510, 65279, 65280, call.chance.between(0, 700),
                         call.chance.between(0, 65280)});
  const int32_t factor = call.chance.oneOf({size, -size});
  call.filter(QRZ_ROW_KERNEL(saturationRow<Format>, SaturationFactor(factor)), [&](const Pixel& p) {
    const int64_t grey = (p.red + p.green + p.blue) / 3;
    return each([&](int64_t value) { return grey + (value - grey) * factor / 255; }, p);
  });
}

/// Weights and offsets that are in use, and those that fill an integer.
template <typename Integer, typename Tone>
void anyTone(Chance& chance, Tone& tone) {
  using Limits = std::numeric_limits<Integer>;
  const bool isUsual = chance.oneIn(2);
  for (auto* number :
       {&tone.weightRed, &tone.weightGreen, &tone.weightBlue, &tone.red, &tone.green, &tone.blue}) {
    const auto usual = static_cast<Integer>(chance.between(-100, 700));
    const auto any = static_cast<Integer>(chance.word());
    *number = isUsual
                  ? usual
                  : chance.oneOf<Integer>({0, 1, Limits::min(), Limits::max(), usual, any, any});
  }
}
template <typename Tone>
Pixel toned(const Tone& tone, const Pixel& p) {
  const int64_t level =
      (p.red * tone.weightRed + p.green * tone.weightGreen + p.blue * tone.weightBlue) / 1024;
  return each([&](int64_t offset) { return offset + level; }, tone);
}
template <typename Format>
void narrowSepia(KernelCall& call) {
  NarrowTone tone{};
  anyTone<int16_t>(call.chance, tone);
  call.filter(QRZ_ROW_KERNEL(sepiaRow<Format>, tone),
              [&](const Pixel& p) { return toned(tone, p); });
}
template <typename Format>
void wideSepia(KernelCall& call) {
  WideTone tone{};
  anyTone<int32_t>(call.chance, tone);
  call.filter(QRZ_ROW_KERNEL(wideSepiaRow<Format>, tone),
              [&](const Pixel& p) { return toned(tone, p); });
}

template <typename Format>
void tint(KernelCall& call) {
  const auto fraction = [&] { return call.chance.oneOf({0, 255, call.chance.byte()}) / 255.0; };
  const TintFactors weight{fraction(), fraction(), fraction()};
  const TintFactors tint{fraction(), fraction(), fraction()};
  const auto number = [](int64_t value) { return static_cast<double>(value); };
  call.filter(QRZ_ROW_KERNEL(tintRow<Format>, weight, tint), [&](const Pixel& p) {
    const double level =
        number(p.red) * weight.red + number(p.green) * weight.green + number(p.blue) * weight.blue;
    return each([&](double factor) { return factor * level; }, tint);
  });
}

/// A table at an address that divides by 8, or by 4 only, and where memory ends.
struct PlacedTable {
  PlacedTable(Chance& chance, uint32_t place, bool isWild) {
    row.place(sizeof(host::Lut3DTable), place, 4, 0);
    for (int32_t i = 0; i < kLut3DElements; ++i) {
      const double usual = chance.between(-50'000, 300'000) / 1000.0;
      const auto wild = chance.oneOf<double>({NAN, INFINITY, -INFINITY, 1e300, -1e300, -0.0});
      row.set(i, isWild && chance.oneIn(8) ? wild : usual);
    }
    *table = row.get<host::Lut3DTable>(0);
  }

  GuardedRow row{sizeof(host::Lut3DTable) + 12};
  std::unique_ptr<host::Lut3DTable> table = std::make_unique<host::Lut3DTable>();
};

template <typename Format>
void lut3D(KernelCall& call) {
  static Chance chance;
  static const PlacedTable tables[] = {
      {chance, 0, false}, {chance, 1, false}, {chance, 2, true}, {chance, 3, true}};
  const PlacedTable& placed = tables[call.chance.between(0, 3)];
  const Lut3DElement* elements = placed.row;
  const host::Lut3DReference reference(*placed.table);
  call.filter(QRZ_ROW_KERNEL(lut3DRow<Format>, elements), [&](const Pixel& p) -> Pixel {
    const uint32_t rgb = reference(static_cast<uint32_t>(p.red << 16 | p.green << 8 | p.blue));
    return {rgb >> 16, rgb >> 8 & 0xFF, rgb & 0xFF};
  });
}

// --- Questions ---------------------------------------------------------------

/// The first x from `start` on for which `isIt(x)`, or `count`.
template <typename Test>
int32_t firstOf(int32_t start, int32_t count, const Test& isIt) {
  while (start < count && !isIt(start)) ++start;
  return start;
}

/// Pixels of the colours `colorAt(x)`, with any pads and at most one wrong bit.
template <typename ColorAt>
GuardedRow& almost(KernelCall& call, const ColorAt& colorAt) {
  GuardedRow& row = call.newPixels();
  const int32_t wrong = call.chance.between(-call.count, call.count);
  for (int32_t x = 0; x < call.count; ++x) {
    Pixel pixel = colorAt(x);
    pixel.pad = call.chance.byte();
    int64_t* channel = call.chance.oneOf({&pixel.red, &pixel.green, &pixel.blue});
    if (x == wrong) *channel ^= 1 << call.chance.between(0, 7);
    row.set(x, call.word(pixel));
  }
  return row;
}

template <typename Format>
void rowIsOf(KernelCall& call) {
  const GuardedRow& row = almost(call, [&](int32_t) { return call.color; });
  const int32_t other =
      firstOf(0, call.count, [&](int32_t x) { return !call.pixel(row, x).hasColorOf(call.color); });
  call.expectValue(other == call.count,
                   QRZ_KERNEL_LATER(rowIsOf<Format>(row, call.count, call.word(call.color))));
}

template <typename Format>
void equalPixels(KernelCall& call) {
  const GuardedRow& first = call.pixels();
  const GuardedRow& second = almost(call, [&](int32_t x) { return call.pixel(first, x); });
  const int32_t equal = firstOf(0, call.count, [&](int32_t x) {
    return !call.pixel(first, x).hasColorOf(call.pixel(second, x));
  });
  // Where they differ, the kernel stops before that stretch of the rows.
  constexpr int32_t kStretch = 64;
  call.expectValue(equal == call.count ? equal : equal / kStretch * kStretch,
                   QRZ_KERNEL_LATER(equalPixels<Format>(first, second, call.count)));
}

template <typename Format>
void nextPair(KernelCall& call) {
  const GuardedRow& first = call.pixels();
  const GuardedRow& second = call.pixels();
  const int32_t start = call.chance.between(0, call.count);
  const int32_t place = call.chance.between(start, call.count + 3);
  const auto wantedIn = [&](const GuardedRow& row) {
    Pixel wanted = place < call.count ? call.pixel(row, place) : call.color;
    wanted.pad = call.chance.byte();
    return wanted;
  };
  const Pixel a = wantedIn(first);
  const Pixel b = wantedIn(second);
  const int32_t expected = firstOf(start, call.count, [&](int32_t x) {
    return call.pixel(first, x).hasColorOf(a) && call.pixel(second, x).hasColorOf(b);
  });
  call.expectValue(expected, QRZ_KERNEL_LATER(nextPair<Format>(first, second, start, call.count,
                                                               call.word(a), call.word(b))));
}

template <typename Format>
void countColor(KernelCall& call) {
  const GuardedRow& row = call.pixels();
  uint32_t expected = 0;
  for (int32_t x = 0; x < call.count; ++x) {
    expected += call.pixel(row, x).hasColorOf(call.color) ? 1 : 0;
  }
  call.expectValue(expected,
                   QRZ_KERNEL_LATER(countColorRow<Format>(row, call.count, call.word(call.color))));
}

/// Bytes R, G, B.
using Triplet = std::array<uint8_t, 3>;
Triplet tripletOf(const Pixel& p) {
  return {static_cast<uint8_t>(p.red), static_cast<uint8_t>(p.green), static_cast<uint8_t>(p.blue)};
}
GuardedRow& newTriplets(KernelCall& call) { return call.row(call.count, sizeof(Triplet), 1); }

template <typename Format>
void countColor24(KernelCall& call) {
  const GuardedRow& colors = call.pixels();
  GuardedRow& row = newTriplets(call);
  uint32_t expected = 0;
  for (int32_t x = 0; x < call.count; ++x) {
    row.set(x, tripletOf(call.pixel(colors, x)));
    expected += call.pixel(colors, x).hasColorOf(call.color) ? 1 : 0;
  }
  const auto [red, green, blue] = tripletOf(call.color);
  call.expectValue(expected, [&, red = red, green = green, blue = blue] {
    return QRZ_KERNEL_CALL(countColorRow24(row, call.count, red, green, blue));
  });
}

template <typename Format>
void histogram(KernelCall& call) {
  const GuardedRow& row = call.pixels();
  HistogramCounters counters[kHistograms] = {};
  counters[1].red[0] = 7;
  HistogramCounters expected = counters[1];
  for (int32_t x = 0; x < call.count; ++x) {
    const Pixel pixel = call.pixel(row, x);
    ++expected.red[pixel.red];
    ++expected.green[pixel.green];
    ++expected.blue[pixel.blue];
  }
  call.run(QRZ_KERNEL_LATER(countRow<Format>(counters, row, call.count)));
  for (const auto channel :
       {&HistogramCounters::red, &HistogramCounters::green, &HistogramCounters::blue}) {
    for (uint32_t i = 0; i < 256; ++i) {
      uint32_t sum = 0;
      for (const HistogramCounters& counted : counters) sum += (counted.*channel)[i];
      EXPECT_EQ(sum, (expected.*channel)[i]) << i;
    }
  }
}

template <typename Format>
void coloredBits(KernelCall& call) {
  call.count %= kBitsInWord + 1;
  const GuardedRow& row = call.pixels();
  uint32_t expected = 0;
  for (int32_t x = 0; x < call.count; ++x) {
    expected |= call.pixel(row, x).isGrey() ? 0 : 1U << x;
  }
  call.expectValue(expected, QRZ_KERNEL_LATER(coloredBits<Format>(row, call.count)));
}

// --- Rows of something else --------------------------------------------------

/// Runs `kernel(destination, count)`; `colorAt(x)` is to come out.
template <typename Kernel, typename ColorAt>
void draw(KernelCall& call, const Kernel& kernel, const ColorAt& colorAt) {
  GuardedRow& to = call.newPixels();
  for (int32_t x = 0; x < call.count; ++x) to.expect(x, call.word(colorAt(x)));
  call.run([&] { kernel(to, call.count); });
}

template <typename Format>
void drawBits(KernelCall& call) {
  const int32_t words = (call.count + 31) / 32;
  GuardedRow& bits = call.row<uint32_t>(words);
  for (int32_t i = 0; i < words; ++i) bits.set(i, call.chance.word());
  draw(call, QRZ_ROW_KERNEL(drawBitsRow<Format>, bits), [&](int32_t x) -> Pixel {
    const bool isSet = (bits.get<uint32_t>(x / 32) >> x % 32 & 1) != 0;
    return isSet ? Pixel{0, 0, 0} : Pixel{255, 255, 255};
  });
}

/// Columns' ends about row y.
GuardedRow& barEnds(KernelCall& call, double y) {
  GuardedRow& ends = call.row<double>(call.count);
  for (int32_t x = 0; x < call.count; ++x) {
    const double usual = y + call.chance.between(-3, 3) / 2.0;
    ends.set(x, call.chance.oneOf<double>({usual, usual, usual, -INFINITY, INFINITY, NAN}));
  }
  return ends;
}

template <typename Format>
void bars(KernelCall& call) {
  const bool isAbove = call.chance.oneIn(2);
  const double y = call.chance.between(0, 1000);
  const GuardedRow& first = barEnds(call, y);
  const GuardedRow& second = barEnds(call, y);
  const Pixel bar{call.color.blue, call.color.red, 0};
  const BarPixels pixels{call.word(bar), call.word(call.color)};
  const auto colorAt = [&](int32_t x) {
    const auto reaches = [&](double end) { return isAbove ? end <= y : end >= y; };
    return reaches(first.get<double>(x)) || reaches(second.get<double>(x)) ? bar : call.color;
  };
  if (isAbove) {
    draw(call, QRZ_ROW_KERNEL(barRowAbove, first, second, y, pixels), colorAt);
  } else {
    draw(call, QRZ_ROW_KERNEL(barRowBelow, first, second, y, pixels), colorAt);
  }
}

template <typename Format>
void readTriplets(KernelCall& call) {
  const GuardedRow& colors = call.pixels();
  GuardedRow& from = newTriplets(call);
  for (int32_t x = 0; x < call.count; ++x) from.set(x, tripletOf(call.pixel(colors, x)));
  draw(call, QRZ_ROW_KERNEL(readTriplets<Format>, from), [&](int32_t x) -> Pixel {
    const auto [red, green, blue] = from.get<Triplet>(x);
    return {red, green, blue};
  });
}

template <typename Format>
void writeTriplets(KernelCall& call) {
  const GuardedRow& from = call.pixels();
  GuardedRow& to = newTriplets(call);
  for (int32_t x = 0; x < call.count; ++x) to.expect(x, tripletOf(call.pixel(from, x)));
  call.run(QRZ_KERNEL_LATER(writeTriplets<Format>(to, call.count, from)));
}

// --- Hashes: any congruent number will do --------------------------------------

constexpr uint64_t kColumns = 1ULL << 32;   ///< above all columns
constexpr uint64_t kProducts = 1ULL << 33;  ///< above what a column adds to a sum

uint64_t remainderOf(uint64_t number) { return number % kHashPrime; }

/// Below `limit`, and often next to it, 0, or no remainder.
uint64_t anyBelow(Chance& chance, uint64_t limit) {
  const uint64_t any = (uint64_t{chance.word()} << 32 | chance.word()) % limit;
  return chance.oneOf<uint64_t>({0, 1, limit - 1, limit - 2, kHashPrime % limit, any, any, any});
}

/// What is in a row becomes what is to be there if it is `start` plus a number below
/// the limit that is congruent to `expected`. Returns what is there.
uint64_t acceptCongruent(GuardedRow& row, int32_t i, uint64_t start, uint64_t expected,
                         uint64_t limit) {
  const uint64_t* elements = row;
  const uint64_t number = elements[i] - start;
  const bool isRight = number < limit && remainderOf(number) == remainderOf(expected);
  row.expect(i, isRight ? elements[i] : start + remainderOf(expected));
  return elements[i];
}

template <typename Format>
void slideColumns(KernelCall& call) {
  GuardedRow& columns = call.row<uint64_t>(call.count);
  for (int32_t x = 0; x < call.count; ++x) columns.set(x, anyBelow(call.chance, kColumns));
  const GuardedRow& entering = call.pixels();
  const GuardedRow& leaving = call.chance.oneIn(2) ? entering : call.pixels();
  const WindowStep step{static_cast<uint32_t>(anyBelow(call.chance, 1 << 29)),
                        static_cast<uint32_t>(anyBelow(call.chance, kHashPrime))};
  call.run(QRZ_KERNEL_LATER(slideColumns<Format>(columns, call.count, entering, leaving, step)));
  const auto number = [&](const GuardedRow& row, int32_t x) -> uint64_t {
    Pixel pixel = call.pixel(row, x);
    pixel.pad = 0;
    return call.word(pixel) >> Format::lowestShift;
  };
  for (int32_t x = 0; x < call.count; ++x) {
    const uint64_t before = remainderOf(columns.get<uint64_t>(x));
    const uint64_t expected = remainderOf(before * step.base) + number(entering, x) +
                              number(leaving, x) * step.leavingFactor;
    acceptCongruent(columns, x, 0, expected, kColumns);
  }
}

template <typename Format>
void sumColumns(KernelCall& call) {
  GuardedRow& sums = call.row<uint64_t>(call.count + 1);
  GuardedRow& columns = call.row<uint64_t>(call.count);
  GuardedRow& powers = call.row<uint32_t>(call.count);
  for (int32_t x = 0; x < call.count; ++x) {
    columns.set(x, anyBelow(call.chance, kColumns));
    powers.set(x, static_cast<uint32_t>(anyBelow(call.chance, kHashPrime)));
  }
  call.run(QRZ_KERNEL_LATER(sumColumns(sums, columns, powers, call.count)));
  uint64_t sum = acceptCongruent(sums, 0, 0, 0, 1);
  for (int32_t x = 0; x < call.count; ++x) {
    const uint64_t product = remainderOf(columns.get<uint64_t>(x)) * powers.get<uint32_t>(x);
    sum = acceptCongruent(sums, x + 1, sum, product, kProducts);
  }
}

template <typename Format>
void nextWindow(KernelCall& call) {
  const int32_t width = call.chance.between(1, 40);
  GuardedRow& sums = call.row<uint64_t>(call.count + width);
  GuardedRow& wanted = call.row<uint32_t>(call.count);
  uint64_t sum = 0;
  for (int32_t x = 0; x < call.count + width; ++x) {
    sums.set(x, sum += anyBelow(call.chance, kProducts));
  }
  const auto hashAt = [&](int32_t x) {
    return remainderOf(sums.get<uint64_t>(x + width) - sums.get<uint64_t>(x));
  };
  const int32_t start = call.chance.between(0, call.count);
  const int32_t place = call.chance.between(start, call.count + 3);
  for (int32_t x = 0; x < call.count; ++x) {
    const bool isRight = x == place || x < start;
    wanted.set(x, static_cast<uint32_t>(isRight ? hashAt(x) : anyBelow(call.chance, kHashPrime)));
  }
  const int32_t expected =
      firstOf(start, call.count, [&](int32_t x) { return wanted.get<uint32_t>(x) == hashAt(x); });
  call.expectValue(expected, QRZ_KERNEL_LATER(nextWindow(sums, wanted, width, start, call.count)));
}

// --- All of them -------------------------------------------------------------

struct Kernel {
  std::string text;                ///< its file's name
  std::string function;            ///< where the text has several
  void (*checks[2])(KernelCall&);  ///< for each format
};

#define QRZ_CHECKS(name) \
  { name<GWorldFormat>, name<RowTableFormat> }

const Kernel kernels[] = {
    {"channels", "combine", QRZ_CHECKS(combine)},
    {"channels", "merge", QRZ_CHECKS(merge)},
    {"channels", "replace", QRZ_CHECKS(replaceChannel)},
    {"colored_areas", "bits", QRZ_CHECKS(coloredBits)},
    {"colored_areas", "draw", QRZ_CHECKS(drawBits)},
    {"compare", "equal", QRZ_CHECKS(equalPixels)},
    {"compare", "is_of", QRZ_CHECKS(rowIsOf)},
    {"compare", "next_pair", QRZ_CHECKS(nextPair)},
    {"count_color", "", QRZ_CHECKS(countColor)},
    {"count_color", "24", QRZ_CHECKS(countColor24)},
    {"embedded_mask", "read", QRZ_CHECKS(readMask)},
    {"embedded_mask", "write", QRZ_CHECKS(writeMask)},
    {"histogram", "", QRZ_CHECKS(histogram)},
    {"invert", "", QRZ_CHECKS(invert)},
    {"invert_gray", "", QRZ_CHECKS(invertGray)},
    {"lut3d", "", QRZ_CHECKS(lut3D)},
    {"map_channels", "", QRZ_CHECKS(mapChannels)},
    {"replace_color", "", QRZ_CHECKS(replaceColor)},
    {"replace_color", "extract", QRZ_CHECKS(extractColor)},
    {"saturation", "", QRZ_CHECKS(saturation)},
    {"sepia", "narrow", QRZ_CHECKS(narrowSepia)},
    {"sepia", "wide", QRZ_CHECKS(wideSepia)},
    {"tint", "", QRZ_CHECKS(tint)},
    {"tone_line", "", QRZ_CHECKS(toneLine)},
    {"triplets", "read", QRZ_CHECKS(readTriplets)},
    {"triplets", "write", QRZ_CHECKS(writeTriplets)},
    {"waveform", "", QRZ_CHECKS(bars)},
    {"window_hash", "next", QRZ_CHECKS(nextWindow)},
    {"window_hash", "slide", QRZ_CHECKS(slideColumns)},
    {"window_hash", "sum", QRZ_CHECKS(sumColumns)},
};

constexpr CpuLevel levels[] = {CpuLevel::SSE2, CpuLevel::SSSE3, CpuLevel::AVX2, CpuLevel::AVX512};
constexpr const char* levelNames[] = {"SSE2", "SSSE3", "AVX2", "AVX512"};
const char* nameOf(CpuLevel level) { return levelNames[static_cast<size_t>(level)]; }

struct {
  const char* name;
  KernelCall::BytePlaces places;
} constexpr formats[] = {{"GWorld", {1, 2, 3, 0}}, {"RowTable", {2, 1, 0, 3}}};

/// A kernel, a level and a format's index.
using Parameter = std::tuple<Kernel, CpuLevel, size_t>;

std::string nameOf(const Parameter& parameter) {
  const auto& [kernel, level, format] = parameter;
  const std::string function = kernel.function.empty() ? "" : "_" + kernel.function;
  return kernel.text + function + "_" + nameOf(level) + "_" + formats[format].name;
}

/// Says in the end how much was checked.
class Summary : public testing::Environment {
 public:
  void TearDown() override {
    std::cout << "kernel check: " << std::size(kernels) << " kernels x " << std::size(levels)
              << " levels x " << std::size(formats) << " formats, " << exact << " checked, "
              << skipped << " skipped" << std::endl;
  }
  static inline int exact = 0, skipped = 0;
};
const auto* const summary = testing::AddGlobalTestEnvironment(new Summary);

class KernelTest : public testing::TestWithParam<Parameter> {
 protected:
  void TearDown() override {
    cpuLevel = CpuLevel::SSE2;
    if (IsSkipped()) ++Summary::skipped;
    if (!IsSkipped() && !HasFailure()) ++Summary::exact;
  }
};
INSTANTIATE_TEST_SUITE_P(Kernels, KernelTest,
                         testing::Combine(testing::ValuesIn(kernels), testing::ValuesIn(levels),
                                          testing::Range(size_t{0}, std::size(formats))),
                         [](const auto& test) { return nameOf(test.param); });

/// Rows of all lengths, and some longer ones, in all places.
void expectExact(KernelCall& call, void (*check)(KernelCall&)) {
  std::vector<int32_t> counts = {191, 192, 193, 256, 257, 1000};
  for (int32_t count = 0; count <= 140; ++count) counts.push_back(count);
  for (const int32_t count : counts) {
    for (uint32_t turn = 0; turn < KernelCall::kTurns; ++turn) {
      call.start(count, turn);
      check(call);
      EXPECT_TRUE(call.isAsExpected());
      ASSERT_FALSE(testing::Test::HasFailure()) << "with " << count << " elements, turn " << turn;
    }
  }
}

TEST_P(KernelTest, IsExact) {
  const auto& [kernel, level, format] = GetParam();
  if (level > detectCpuLevel()) GTEST_SKIP() << "this machine has no " << nameOf(level);
  cpuLevel = level;
  KernelCall call(formats[format].places);
  expectExact(call, kernel.checks[format]);
  // Nothing of a higher level runs, which another machine may not have. Slow, and the
  // formats share a text.
  if (format != 0) return;
  call.isTraced = true;
  call.start(40, 0);
  kernel.checks[format](call);
  EXPECT_LE(call.highest, static_cast<host::InstructionSet>(level));
}

TEST(Kernels, EachTextIsChecked) {
  for (const auto& file :
       std::filesystem::directory_iterator(QRZ_SOURCE_FOLDER "/plugin/kernels")) {
    const std::filesystem::path& text = file.path();
    if (text.extension() != ".inc" || text.stem() == "vectors") continue;
    EXPECT_TRUE(std::ranges::any_of(kernels, [&](const Kernel& kernel) {
      return text.stem() == kernel.text;
    })) << text;
  }
}

/// No kernel of a level's own.
TEST(Kernels, StreamedPixelsAreCopied) {
  KernelCall call(formats[0].places);
  expectExact(call, [](KernelCall& rows) {
    const auto stream = [](PixelWord* to, int32_t count, const PixelWord* from) {
      streamPixels(to, from, count);
      endStream();
    };
    rows.filter(stream, [](const Pixel& p) { return p; });
  });
}

TEST(Kernels, RunAtTheLevelThatIsAskedFor) {
  for (const CpuLevel level : levels) {
    if (level > detectCpuLevel()) continue;
    cpuLevel = level;
    KernelCall call(formats[1].places);
    call.isTraced = true;
    call.start(64, 0);
    saturation<RowTableFormat>(call);
    EXPECT_EQ(call.highest, static_cast<host::InstructionSet>(level)) << nameOf(level);
  }
  cpuLevel = CpuLevel::SSE2;
}

}  // namespace
}  // namespace qrz
