// RenderSamplesQRZ: a picture of a waveform.

#include <algorithm>

#include "plugin/binding/properties.h"
#include "plugin/kernels/waveform.h"
#include "plugin/pixels/filter.h"
#include "plugin/waveform/waveform.h"
#include "plugin/waveform/wu_line.h"

namespace qrz {
namespace {

/// Draws the bars: every column from the middle row to both of its ends, in
/// front of the background.
template <typename Path>
void drawBars(const PictureWriter<Path>& writer, const Waveform& waveform, int32_t height,
              int32_t middle, HostColor bar, HostColor background) {
  using Format = typename Path::Format;
  const BarPixels pixels{Format::ofColor(bar), Format::ofColor(background)};
  const int32_t width = waveform.width();
  for (int32_t y = 0; y < height; ++y) {
    PixelWord* row = writer.row(y);
    if (y == middle) {
      for (int32_t x = 0; x < width; ++x) row[x] = pixels.bar;
    } else if (y < middle) {
      QRZ_KERNEL_CALL(barRowAbove(row, width, waveform.first(), waveform.second(), y, pixels));
    } else {
      QRZ_KERNEL_CALL(barRowBelow(row, width, waveform.first(), waveform.second(), y, pixels));
    }
  }
}

/// Calls `draw(from, to)` for the segments of two polylines through the bars'
/// ends, by turns, from the left; both start in the middle row.
template <typename Draw>
void drawOutline(const Waveform& waveform, int32_t middle, const Draw& draw) {
  LinePoint first{0, middle};
  LinePoint second = first;
  for (int32_t x = 0; x < waveform.width(); ++x) {
    const LinePoint nextFirst{x, static_cast<int32_t>(waveform.first()[x])};
    const LinePoint nextSecond{x, static_cast<int32_t>(waveform.second()[x])};
    draw(first, nextFirst);
    draw(second, nextSecond);
    first = nextFirst;
    second = nextSecond;
  }
}

/// Blends a colour over pixels; `weighting` is what stays of the pixel, 0 to 255.
template <typename Format>
uint32_t blend(uint32_t pixel, HostColor color, int32_t weighting) {
  const auto part = static_cast<uint32_t>(weighting);
  const auto channel = [part](uint32_t old, uint32_t drawn) {
    return (old * part + drawn * (255 - part)) / 255;
  };
  return Format::pack(channel(Format::red(pixel), RowTableFormat::red(color)),
                      channel(Format::green(pixel), RowTableFormat::green(color)),
                      channel(Format::blue(pixel), RowTableFormat::blue(color)));
}

/// The outline as antialiased lines of one pixel.
template <typename Path>
void drawThinOutline(const PictureWriter<Path>& writer, const Waveform& waveform, int32_t height,
                     int32_t middle, HostColor color) {
  const auto plot = [&](LinePoint point, int32_t weighting) {
    if (point.y < 0 || point.y >= height) return;
    PixelWord& pixel = writer.row(static_cast<int32_t>(point.y))[point.x];
    pixel = blend<typename Path::Format>(pixel, color, weighting);
  };
  drawOutline(waveform, middle,
              [&plot](LinePoint from, LinePoint to) { drawWuLine(from, to, plot); });
}

/// The outline with the host's pen, which hangs to the right of and below its
/// point. A host without a drawing surface draws none.
void drawWideOutline(HostPicture picture, const Waveform& waveform, int32_t middle,
                     int32_t outlineWidth, HostColor color) {
  const Reference<HostGraphics> graphics{service::pluginPictureGraphicsGetter(picture)};
  if (!graphics) return;
  SetForeColorProperty(asObject(graphics.get()), color);
  SetPenHeightProperty(asObject(graphics.get()), outlineWidth);
  SetPenWidthProperty(asObject(graphics.get()), outlineWidth);
  const auto moved = [outlineWidth](int64_t coordinate) {
    return static_cast<int32_t>(
        std::clamp<int64_t>(coordinate - outlineWidth / 2, INT32_MIN, INT32_MAX));
  };
  drawOutline(waveform, middle, [&](LinePoint from, LinePoint to) {
    service::RuntimeGraphicsDrawLine(graphics.get(), moved(from.x), moved(from.y), moved(to.x),
                                     moved(to.y));
  });
}

}  // namespace

/// A new picture of Width × Height pixels with the waveform of `Samples`, pairs
/// of signed 8-bit values: for every column two bars, from the middle row to
/// where the first and the second values, smoothed over `Smooth` samples and
/// scaled, end. `SampleCount` below 1 means all that the block holds, more than
/// that as well. A Width below 1 means one column a sample, a Height below 1
/// 500 rows. `outlinewidth` 1 draws an antialiased line through the bars' ends,
/// more uses the host's pen of that size, less draws none. Bars and lines are
/// cut at the picture's edges, wherever they end; ends that are no number lie in
/// row 0. Nil if the block is nil or has no address, there is no memory, no
/// picture can be made, or there are neither samples nor a Width.
HostPicture RenderSamplesQRZ(HostMemoryBlock Samples, int32_t SampleCount, int32_t Smooth,
                             int32_t Width, int32_t Height, int32_t outlinewidth,
                             HostColor BackColor, HostColor ForeColor, HostColor OutLineColor) {
  if (Samples == nullptr) return nullptr;
  const int32_t held = std::max(service::memoryBlockGetSize(Samples), 0) / 2;
  const int32_t count = SampleCount < 1 ? held : std::min(SampleCount, held);
  const int32_t height = Height > 0 ? Height : 500;
  const int32_t width = Width > 0 ? Width : count;
  const int32_t middle = height / 2;
  const void* bytes = service::memoryBlockGetPtr(Samples);
  if (bytes == nullptr || width < 1) return nullptr;
  Waveform waveform(width);
  if (!waveform) return nullptr;
  waveform.smooth({static_cast<const int8_t*>(bytes), count}, Smooth);
  waveform.place(height, middle);
  HostPicture picture = drawNewPicture(width, height, [&](auto /*path*/, const auto& writer) {
    drawBars(writer, waveform, height, middle, ForeColor, BackColor);
    if (outlinewidth == 1) drawThinOutline(writer, waveform, height, middle, OutLineColor);
  });
  if (picture != nullptr && outlinewidth > 1) {
    drawWideOutline(picture, waveform, middle, outlinewidth, OutLineColor);
  }
  return picture;
}

}  // namespace qrz
