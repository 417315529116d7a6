#include "host/manual/groups.h"
#include "host/manual/phrases.h"

namespace host {
namespace {

constexpr std::string_view kChannelPicture =
    "a picture at least as wide and as high; what is beyond on the right and below is ignored";
constexpr std::string_view kNoChannel =
    "A NilObjectException if the channel picture is nil; Nil if it is less wide or less high than "
    "the picture, if either cannot be read, or there is no memory for the new one.";
constexpr std::string_view kSameSize = "a picture, of the same size as the others";
constexpr std::string_view kNoCommonPicture =
    "Nil if one of them is nil or cannot be read, if their sizes differ, or there is no memory "
    "for the new picture.";

}  // namespace

std::span<const Description> channelMembers() {
  static const Description kMembers[] = {
      {"Picture",
       "ReplaceRedChannelQRZ(RedChannel as picture) as picture",
       "Makes a new picture with red from another picture, and its own green and blue.",
       {{"RedChannel", "the picture that gives its red", kChannelPicture}},
       kNoChannel,
       {{"landscape", "self.ReplaceRedChannelQRZ(Picture.Open(\"sample:greys\"))",
         "The balls of the other picture show in red and cyan."}}},
      {"Picture",
       "ReplaceGreenChannelQRZ(GreenChannel as picture) as picture",
       "Makes a new picture with green from another picture, and its own red and blue.",
       {{"GreenChannel", "the picture that gives its green", kChannelPicture}},
       kNoChannel,
       {{"colors", "self.ReplaceGreenChannelQRZ(self.InvertQRZ)",
         "Green from the negative: the light ground turns magenta, the red ball yellow."}}},
      {"Picture",
       "ReplaceBlueChannelQRZ(BlueChannel as picture) as picture",
       "Makes a new picture with blue from another picture, and its own red and green.",
       {{"BlueChannel", "the picture that gives its blue", kChannelPicture}},
       kNoChannel,
       {{"landscape", "self.ReplaceBlueChannelQRZ(New Picture(self.Width, self.Height, 32))",
         "Blue from a white picture, 255 everywhere."}}},
      {"",
       "CombinePicturesQRZ(red as picture, blue as picture, green as picture) as picture",
       "Makes one picture from the channels of three; note the order red, blue, green.",
       {{"red", "the picture that gives its red", kSameSize},
        {"blue", "the picture that gives its blue", kSameSize},
        {"green", "the picture that gives its green", kSameSize}},
       kNoCommonPicture,
       {{"colors", "CombinePicturesQRZ(self, self.InvertQRZ, self)", "Only blue is a negative."},
        {"colors",
         "Function Moved(source As Picture, x As Integer) As Picture\n"
         "  Dim p As New Picture(source.Width, source.Height, 32)\n"
         "  p.Graphics.DrawPicture(source, x, 0)\n"
         "  Return p\n"
         "End Function\n"
         "CombinePicturesQRZ(Moved(self, -12), Moved(self, 12), self)",
         "A bad print: two of the plates moved sideways."}}},
      {"",
       "MergePictureQRZ(source1 as picture, source2 as picture) as picture",
       "Makes a new picture of the larger of two pictures' levels, pixel by pixel and channel by "
       "channel.",
       {{"source1", "one picture", kSameSize}, {"source2", "the other one", kSameSize}},
       kNoCommonPicture,
       {{"landscape",
         "MergePictureQRZ(self, Picture.Open(\"sample:colors\").ChangeBrightnessLinearQRZ(-90))",
         "Like two slides on one screen."}}},
  };
  return kMembers;
}

}  // namespace host
