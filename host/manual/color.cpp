#include "host/manual/groups.h"

namespace host {

std::span<const Recipe> colorRecipes() {
  static constexpr Recipe kRecipes[] = {
      {"Picture", "ChangeSaturationQRZ(Amount as integer) as picture", "landscape",
       "result = self.ChangeSaturationQRZ(300)",
       "Pushes the channels away from the pixel's grey; -255 leaves only that grey."},
      {"", "TintPictureQRZ(source as picture, GreyBase as color, SepiaBase as color) as picture",
       "landscape", "result = TintPictureQRZ(self, RGB(76, 150, 29), RGB(255, 224, 176))",
       "The first colour weighs red, green and blue into a grey; the second is what white "
       "becomes."},
      {"Picture",
       "TransformColorsQRZ(red as memoryblock, blue as memoryblock, green as memoryblock) as "
       "picture",
       "landscape",
       R"(Dim steps As New MemoryBlock(256)
For i As Integer = 0 To 255
  steps.Byte(i) = (i \ 52) * 63
Next
result = self.TransformColorsQRZ(steps, steps, steps))",
       "Each channel through a table of its own; this one leaves five levels: a poster."},
      {"Picture", "ReplaceColorQRZ(SearchColor as color, ReplaceWithColor as color) as picture",
       "edges", "result = self.ReplaceColorQRZ(&cFABA1A, &c2E9E5B)",
       "One exact colour becomes another: yellow turns green, except where edges are blended."},
      {"Picture",
       "ExtractColorQRZ(SearchColor as color, ReplaceWithColor as color, BackGroundColor as "
       "color) as picture",
       "edges", "result = self.ExtractColorQRZ(&cDB2924, &c000000, &cE8E8E8)",
       "Where one exact colour is, and where it is not: all that is red, in black."},
  };
  return kRecipes;
}

}  // namespace host
