// Pictures: an object of the host's language over one pixel store.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/core/object.h"
#include "host/core/pixel_store.h"
#include "plugin/binding/description.h"

namespace host {

/// How the graphics object of a picture draws.
struct Pen {
  uint32_t color = 0;  ///< 0x00RRGGBB
  int32_t width = 1;   ///< pixels, to the right of the point
  int32_t height = 1;  ///< pixels, below the point
};

class Picture final : public Object {
 public:
  /// Null without memory or if a size is below 1.
  static Ref<Picture> create(Storage storage, int32_t width, int32_t height, int32_t depth = 32);
  explicit Picture(std::unique_ptr<PixelStore> store);

  [[nodiscard]] std::string describe() const override;
  [[nodiscard]] int32_t width() const { return store_->width(); }
  [[nodiscard]] int32_t height() const { return store_->height(); }
  [[nodiscard]] int32_t depth() const { return store_->depth(); }
  [[nodiscard]] PixelStore& store() { return *store_; }
  [[nodiscard]] const PixelStore& store() const { return *store_; }

  /// All pixels, row-major, as words 0xPPRRGGBB.
  [[nodiscard]] std::vector<uint32_t> pixels() const;
  void setPixels(const std::vector<uint32_t>& words);
  /// 0x00RRGGBB, or black outside the picture.
  [[nodiscard]] uint32_t pixel(int32_t x, int32_t y) const;
  /// The part of the rectangle inside the picture gets the colour, pad 0.
  void fill(int32_t x, int32_t y, int32_t width, int32_t height, uint32_t color);

  /// Keeps the pixels where they are until the matching unlock.
  void lock(qrz::PictureDescription& description);
  void unlock();
  [[nodiscard]] int32_t locks() const { return locks_; }
  /// The pixels were changed behind the host's back.
  void clearCache();

  Ref<Picture> mask;  ///< grey levels, 255 opaque; null: the picture is opaque
  Pen pen;

 protected:
  ~Picture() override;

 private:
  std::unique_ptr<PixelStore> store_;
  int32_t locks_ = 0;
};

/// The method of graphics objects that draws a part of a picture, as the plug-in
/// and scripts find it.
constexpr const char* kDrawPictureDeclaration =
    "DrawPicture(Image as Picture, x as Integer, y as Integer, w as Integer, h as Integer, "
    "sx as Integer = 0, sy as Integer = 0, sw as Integer = -10000, sh as Integer = -10000)";

/// A source size that stands for all that is left of the source.
constexpr int32_t kUpToTheEdge = -10000;

/// A part of a picture and where it goes, in pixels.
struct Placement {
  int32_t x, y, width, height;
  int32_t sourceX, sourceY, sourceWidth, sourceHeight;
};

/// Gives the picture a mask, or none for null. Raises an exception if the mask
/// is the picture itself or has it for a mask, directly or not.
void setMask(Picture& picture, Ref<Picture> mask);

/// Draws a stretch of `source` into `destination`, scaled by taking the nearest
/// pixel; what lies outside either picture is left out. The source's mask lets
/// the destination show through.
void drawPicture(Picture& destination, const Picture& source, const Placement& placement);

/// Draws a line with the picture's pen, both ends included.
void drawLine(Picture& picture, int32_t x1, int32_t y1, int32_t x2, int32_t y2);

/// The drawing surface of a picture; keeps the picture alive.
class Graphics final : public Object {
 public:
  explicit Graphics(Ref<Picture> target);
  [[nodiscard]] std::string describe() const override;
  [[nodiscard]] Picture& picture() const { return *picture_; }

 protected:
  ~Graphics() override = default;

 private:
  Ref<Picture> picture_;
};

}  // namespace host
