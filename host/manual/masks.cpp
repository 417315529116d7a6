#include "host/manual/groups.h"
#include "host/manual/phrases.h"

namespace host {

std::span<const Description> maskMembers() {
  static const Description kMembers[] = {
      {"Picture",
       "HasMaskQRZ as boolean",
       "Tells whether the picture has a mask of its own (the property Mask); what is in its pixels "
       "does not count.",
       {},
       "False if the picture is nil.",
       {{"alpha", "self.HasMaskQRZ", "This picture was opened with alpha.", false}}},
      {"Picture",
       "EmbeddedMaskQRZ(swap as boolean) as picture",
       "Reads the mask inside the pixels (the byte beside red, green and blue, not the property "
       "Mask) as a grey picture, or writes it in place from one that is assigned.",
       {{"swap", "whether every level is turned into 255 minus itself",
         "True or False; levels are 0 to 255, but only 0 to 127 are read, before they are turned, "
         "where the host keeps pictures as bitmap records (--pictures bitmap)"},
        {"value", "the picture whose red levels become the mask, when it is assigned",
         "a picture, laid on from the upper left corner; where it is smaller, the rest keeps its "
         "mask, what is beyond is ignored"}},
       "Nil if the picture cannot be read or there is no memory for the new one; an assignment "
       "does nothing if the assigned picture is nil, either cannot be read, or this one can only "
       "be read through a copy, as PICT data and pictures of other than 32 bits.",
       {{"alpha", "self.EmbeddedMaskQRZ(False)",
         "White where the picture is opaque, black where nothing of it shows."},
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
       "Makes a new picture with black rectangles where this one is not grey (red, green and blue "
       "not all equal), on white.",
       {},
       kNoNewPicture,
       {{"greys", "self.ExtractColorRectangleMaskQRZ", "A box over each coloured area."}}},
      {"Picture",
       "ExtractColorRectangleMaskQRZ(left as integer,top as integer,width as integer,height as "
       "integer) as picture",
       "Makes a new picture with black rectangles where this one is not grey inside a rectangle, "
       "on white, which all outside it is as well.",
       rectangleArguments(),
       kNoNewPicture,
       {{"greys", "self.ExtractColorRectangleMaskQRZ(0, 0, -1, 250)",
         "The patches in the lowest row are not looked at."}}},
  };
  return kMembers;
}

}  // namespace host
