// A plain renderer of waveforms, which the plug-in's pictures are compared with.
#pragma once

#include <cstdint>
#include <vector>

namespace host {

/// The arguments of RenderSamplesQRZ.
struct Waveform {
  std::vector<uint8_t> bytes;
  int32_t count = 0, smooth = 1, width = 0, height = 0, outline = 0;
  uint32_t back = 0x88B5C4, fore = 0x274C5A, line = 0x203F4E;
};

/// A waveform drawn into plain words 0x00RRGGBB. Its size is to be drawable.
class RenderedWaveform {
 public:
  explicit RenderedWaveform(const Waveform& waveform);
  [[nodiscard]] int32_t width() const { return width_; }
  [[nodiscard]] int32_t height() const { return height_; }
  [[nodiscard]] const std::vector<uint32_t>& pixels() const { return pixels_; }

  /// A stretch of the outline.
  struct Segment {
    int32_t x0, y0, x1, y1;
  };
  /// In the order of drawing.
  [[nodiscard]] std::vector<Segment> outline() const;

 private:
  struct Column {
    double first = 0, second = 0;
  };
  void spread(const Waveform& waveform);
  /// The row that a column's value reaches.
  [[nodiscard]] int32_t row(double value) const;
  void drawBars(const Waveform& waveform);
  void drawThinOutline(uint32_t color);
  void drawThin(Segment s, uint32_t color);
  void drawWithHostPen(int32_t size, uint32_t color);
  /// Blends the colour in: all of it at weight 0, nothing of it at 255.
  void plot(int32_t x, int32_t y, uint32_t color, uint32_t weight);

  int32_t samples_, width_, height_;
  std::vector<Column> columns_;
  std::vector<uint32_t> pixels_;
};

}  // namespace host
