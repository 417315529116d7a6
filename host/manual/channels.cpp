#include "host/manual/groups.h"

namespace host {

std::span<const Recipe> channelRecipes() {
  static constexpr Recipe kRecipes[] = {
      {"Picture", "ReplaceRedChannelQRZ(RedChannel as picture) as picture", "landscape",
       "result = self.ReplaceRedChannelQRZ(Picture.Open(\"sample:greys\"))",
       "Red comes from the other picture, green and blue stay: the balls show in red and cyan."},
      {"Picture", "ReplaceGreenChannelQRZ(GreenChannel as picture) as picture", "colors",
       "result = self.ReplaceGreenChannelQRZ(self.InvertQRZ)",
       "Green from the negative: what was light turns magenta, what was dark green."},
      {"Picture", "ReplaceBlueChannelQRZ(BlueChannel as picture) as picture", "landscape",
       "result = self.ReplaceBlueChannelQRZ(New Picture(self.Width, self.Height, 32))",
       "Blue from a white picture, 255 everywhere."},
      {"", "CombinePicturesQRZ(red as picture, blue as picture, green as picture) as picture",
       "colors",
       R"(Function Moved(source As Picture, x As Integer) As Picture
  Dim p As New Picture(source.Width, source.Height, 32)
  p.Graphics.DrawPicture(source, x, 0)
  Return p
End Function
result = CombinePicturesQRZ(Moved(self, -12), Moved(self, 12), self))",
       "Red, blue and green from three pictures, in this order: here a bad print, two of the "
       "plates moved sideways."},
      {"", "MergePictureQRZ(source1 as picture, source2 as picture) as picture", "landscape",
       "result = MergePictureQRZ(self, "
       "Picture.Open(\"sample:colors\").ChangeBrightnessLinearQRZ(-90))",
       "The lighter of the two, channel by channel, like two slides on one screen."},
  };
  return kRecipes;
}

}  // namespace host
