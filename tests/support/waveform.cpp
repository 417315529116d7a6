#include "tests/support/waveform.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

#include "host/core/picture.h"

namespace host {

RenderedWaveform::RenderedWaveform(const Waveform& waveform) {
  const auto held = static_cast<int32_t>(waveform.bytes.size() / 2);
  samples_ = waveform.count < 1 ? held : std::min(waveform.count, held);
  height_ = waveform.height > 0 ? waveform.height : 500;
  width_ = waveform.width > 0 ? waveform.width : samples_;
  columns_.resize(static_cast<size_t>(width_));
  pixels_.resize(columns_.size() * static_cast<size_t>(height_), waveform.back & 0xFFFFFF);
  spread(waveform);
  drawBars(waveform);
  if (waveform.outline == 1) drawThinOutline(waveform.line);
  if (waveform.outline > 1) drawWithHostPen(waveform.outline, waveform.line & 0xFFFFFF);
}

void RenderedWaveform::spread(const Waveform& waveform) {
  const auto value = [&](int64_t index) {
    return static_cast<double>(static_cast<int8_t>(waveform.bytes[static_cast<size_t>(index)]));
  };
  const double alpha = 2.0 / (waveform.smooth + 1);
  double peak = 100.0;
  Column average;
  if (samples_ > 0) average = columns_[0] = {value(0), value(1)};
  for (int64_t i = 0; i < samples_; ++i) {
    average.first = average.first * (1 - alpha) + value(2 * i) * alpha;
    average.second = average.second * (1 - alpha) + value(2 * i + 1) * alpha;
    if (average.second > peak) peak = average.second;
    columns_[static_cast<size_t>(i * width_ / samples_)] = average;
  }
  for (Column& column : columns_) {
    column.first = column.first * 0.5 / peak * height_;
    column.second = column.second * 0.5 / peak * height_;
  }
}

int32_t RenderedWaveform::row(double value) const {
  const int32_t middle = height_ / 2;
  const double y = middle + value;
  if (std::isnan(y)) return 0;
  return static_cast<int32_t>(std::clamp(y, -2147483648.0, 2147483647.0));
}

void RenderedWaveform::drawBars(const Waveform& waveform) {
  const int32_t middle = height_ / 2;
  for (int32_t x = 0; x < width_; ++x) {
    const Column& column = columns_[static_cast<size_t>(x)];
    for (const int32_t end : {row(column.first), row(column.second)}) {
      const int32_t low = std::clamp(std::min(middle, end), 0, height_ - 1);
      const int32_t high = std::clamp(std::max(middle, end), 0, height_ - 1);
      for (int32_t y = low; y <= high; ++y) plot(x, y, waveform.fore, 0);
    }
  }
}

std::vector<RenderedWaveform::Segment> RenderedWaveform::outline() const {
  std::vector<Segment> segments;
  std::pair<int32_t, int32_t> first = {0, height_ / 2};
  std::pair<int32_t, int32_t> second = first;
  for (int32_t x = 0; x < width_; ++x) {
    const Column& column = columns_[static_cast<size_t>(x)];
    const int32_t ends[] = {row(column.first), row(column.second)};
    segments.push_back({first.first, first.second, x, ends[0]});
    segments.push_back({second.first, second.second, x, ends[1]});
    first = {x, ends[0]};
    second = {x, ends[1]};
  }
  return segments;
}

void RenderedWaveform::drawThinOutline(uint32_t color) {
  for (const Segment& segment : outline()) drawThin(segment, color);
}

/// Wu's line with a 16-bit accumulator and 8 bits of intensity.
void RenderedWaveform::drawThin(Segment s, uint32_t color) {
  if (s.y0 > s.y1) s = {s.x1, s.y1, s.x0, s.y0};
  int32_t x = s.x0;
  int32_t y = s.y0;
  const int32_t direction = s.x1 >= s.x0 ? 1 : -1;
  const int32_t dx = std::abs(s.x1 - s.x0);
  const int32_t dy = s.y1 - s.y0;
  if (dx > INT16_MAX || dy > INT16_MAX) throw std::logic_error("too far for thin lines");
  plot(x, y, color, 0);
  if (dx == 0 || dy == 0 || dx == dy) {
    for (int32_t i = std::max(dx, dy); i > 0; --i) {
      plot(x += dx == 0 ? 0 : direction, y += dy == 0 ? 0 : 1, color, 0);
    }
    return;
  }
  const bool isSteep = dy > dx;
  const auto step = static_cast<uint16_t>(65536U * static_cast<uint32_t>(std::min(dx, dy)) /
                                          static_cast<uint32_t>(std::max(dx, dy)));
  uint16_t accumulator = 0;
  for (int32_t i = std::max(dx, dy) - 1; i > 0; --i) {
    const uint16_t old = std::exchange(accumulator, static_cast<uint16_t>(accumulator + step));
    const bool carries = accumulator <= old;
    if (isSteep || carries) ++y;
    if (!isSteep || carries) x += direction;
    const uint32_t weight = accumulator / 256;
    plot(x, y, color, weight);
    plot(isSteep ? x + direction : x, isSteep ? y : y + 1, color, 255 - weight);
  }
  plot(s.x1, s.y1, color, 0);
}

void RenderedWaveform::drawWithHostPen(int32_t size, uint32_t color) {
  const auto canvas = Picture::create(Storage::Bitmap, width_, height_);
  canvas->setPixels(pixels_);
  const int32_t widest = INT16_MAX;  // of the host's pens
  canvas->pen = {color, std::min(size, widest), std::min(size, widest)};
  const auto moved = [half = size / 2](int64_t coordinate) {
    return static_cast<int32_t>(std::max<int64_t>(coordinate - half, INT32_MIN));
  };
  for (const Segment& s : outline()) {
    drawLine(*canvas, moved(s.x0), moved(s.y0), moved(s.x1), moved(s.y1));
  }
  pixels_ = canvas->pixels();
}

void RenderedWaveform::plot(int32_t x, int32_t y, uint32_t color, uint32_t weight) {
  if (x < 0 || y < 0 || x >= width_ || y >= height_) return;
  uint32_t& pixel = pixels_[static_cast<size_t>(y) * columns_.size() + static_cast<size_t>(x)];
  uint32_t blended = 0;
  for (const int32_t shift : {16, 8, 0}) {
    const uint32_t old = pixel >> shift & 0xFF;
    blended = blended << 8 | (old * weight + (color >> shift & 0xFF) * (255 - weight)) / 255;
  }
  pixel = blended;
}

}  // namespace host
