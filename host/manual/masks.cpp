#include "host/manual/groups.h"

namespace host {

std::span<const Recipe> maskRecipes() {
  static constexpr Recipe kRecipes[] = {
      {"Picture", "HasMaskQRZ as boolean", "alpha", "result = self.HasMaskQRZ",
       "Whether the host holds a mask for the picture; this one was opened with alpha."},
      {"Picture", "EmbeddedMaskQRZ(swap as boolean) as picture", "alpha",
       "result = self.EmbeddedMaskQRZ(False)",
       "The alpha inside the pixels as a grey picture, white where the picture is opaque."},
      {"Picture", "EmbeddedMaskQRZ(swap as boolean) as picture", "alpha",
       "result = self.EmbeddedMaskQRZ(True)", "The same swapped: black where it is opaque."},
      {"Picture", "EmbeddedMaskQRZ(swap as boolean) as picture", "landscape",
       R"(Dim fade As New Picture(self.Width, self.Height, 32)
For x As Integer = 0 To self.Width - 1
  Dim level As Integer = 255 * x \ (self.Width - 1)
  fade.Graphics.ForeColor = RGB(level, level, level)
  fade.Graphics.FillRect(x, 0, 1, self.Height)
Next
self.EmbeddedMaskQRZ(False) = fade
self.Mask = self.EmbeddedMaskQRZ(False)
result = self)",
       "It can be assigned: a ramp goes into the pixels, and read back it is the picture's mask."},
      {"Picture", "ExtractColorRectangleMaskQRZ as picture", "greys",
       "result = self.ExtractColorRectangleMaskQRZ",
       "Black rectangles over everything that is not grey."},
      {"Picture",
       "ExtractColorRectangleMaskQRZ(left as integer,top as integer,width as integer,height as "
       "integer) as picture",
       "greys", "result = self.ExtractColorRectangleMaskQRZ(0, 0, -1, 250)",
       "Only inside the rectangle; the patches in the lowest row are not looked at."},
  };
  return kRecipes;
}

}  // namespace host
