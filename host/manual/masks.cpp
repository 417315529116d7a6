#include "host/manual/groups.h"
#include "host/manual/phrases.h"

namespace host {

std::span<const Description> maskMembers() {
  static const Description kMembers[] = {
      {"Picture",
       "HasMaskQRZ as boolean",
       "Tells whether the host holds a mask for the picture.",
       {},
       "False if the picture is nil.",
       {{"alpha", "self.HasMaskQRZ", "This picture was opened with alpha.", false}}},
      {"Picture",
       "EmbeddedMaskQRZ(swap as boolean) as picture",
       "Reads the mask inside the pixels as a grey picture, or writes it from one that is "
       "assigned.",
       {{"swap", "whether every level is turned into 255 minus itself",
         "True or False; levels are 0 to 255, in the host's own bitmap records 0 to 127"},
        {"value", "the picture whose red levels become the mask, when it is assigned",
         "a picture; where it is smaller, the rest keeps its mask"}},
       "Nil if the picture cannot be read or there is no memory for the new one; an assignment "
       "does nothing if either picture is nil or cannot be read.",
       {{"alpha", "self.EmbeddedMaskQRZ(False)", "White where the picture is opaque."},
        {"alpha", "self.EmbeddedMaskQRZ(True)", "The same swapped: black where it is opaque."},
        {"landscape",
         "Dim fade As New Picture(self.Width, self.Height, 32)\n"
         "For x As Integer = 0 To self.Width - 1\n"
         "  Dim level As Integer = 255 * x \\ (self.Width - 1)\n"
         "  fade.Graphics.ForeColor = RGB(level, level, level)\n"
         "  fade.Graphics.FillRect(x, 0, 1, self.Height)\n"
         "Next\n"
         "self.EmbeddedMaskQRZ(False) = fade\n"
         "self.Mask = self.EmbeddedMaskQRZ(False)\n"
         "self",
         "A ramp is assigned; read back, it becomes the picture's mask."}}},
      {"Picture",
       "ExtractColorRectangleMaskQRZ as picture",
       "Covers everything that is not grey with black rectangles, on white.",
       {},
       kNoNewPicture,
       {{"greys", "self.ExtractColorRectangleMaskQRZ", "A box over each coloured area."}}},
      {"Picture",
       "ExtractColorRectangleMaskQRZ(left as integer,top as integer,width as integer,height as "
       "integer) as picture",
       "Covers what is not grey inside a rectangle with black rectangles, on white.",
       rectangleArguments(),
       kNoNewPicture,
       {{"greys", "self.ExtractColorRectangleMaskQRZ(0, 0, -1, 250)",
         "The patches in the lowest row are not looked at."}}},
  };
  return kMembers;
}

}  // namespace host
