#include "host/manual/groups.h"
#include "host/manual/phrases.h"

namespace host {
namespace {

constexpr std::string_view kTable =
    "a memory block of 256 bytes or more; byte i is what level i becomes, further bytes are "
    "ignored";

}  // namespace

std::span<const Description> colorMembers() {
  static const Description kMembers[] = {
      {"Picture",
       "ChangeSaturationQRZ(Amount as integer) as picture",
       "Moves each pixel's channels away from its grey level, which is their mean, or towards it.",
       {{"Amount", "how far, in 255ths of the distance; 0 changes nothing",
         "any: 255 doubles the distance, -255 leaves only the grey, less makes opposite colours; "
         "results stop at 0 and 255"}},
       kNoNewPicture,
       {{"landscape", "self.ChangeSaturationQRZ(300)", "Colours more than twice as strong."},
        {"landscape", "self.ChangeSaturationQRZ(-255)", "No colours at all."}}},
      {"",
       "TintPictureQRZ(source as picture, GreyBase as color, SepiaBase as color) as picture",
       "Weighs each pixel's channels into one level, and shows the levels as shades from black "
       "to a colour.",
       {{"source", "the picture to tint, which stays as it is", kAnyPicture},
        {"GreyBase", "how much red, green and blue count, in 255ths",
         "any colour; if the three add up to 255, white becomes the full SepiaBase, if to less, a "
         "darker shade, if to more, a lighter one, whose channels stop at 255"},
        {"SepiaBase", "the colour at level 255", kAnyColor}},
       "Nil if the source is nil or cannot be read, or there is no memory for the new picture.",
       {{"landscape", "TintPictureQRZ(self, RGB(76, 150, 29), RGB(255, 224, 176))",
         "The weights of the eye, and the colour of old paper."}}},
      {"Picture",
       "TransformColorsQRZ(red as memoryblock, blue as memoryblock, green as memoryblock) as "
       "picture",
       "Sends each channel through a table of its own; note the order red, blue, green.",
       {{"red", "the table for red", kTable},
        {"blue", "the table for blue", kTable},
        {"green", "the table for green", kTable}},
       "Nil if a block is nil or shorter than 256 bytes, the picture cannot be read, or there is "
       "no memory for the new one.",
       {{"landscape",
         "Dim steps As New MemoryBlock(256)\n"
         "For i As Integer = 0 To 255\n"
         "  steps.Byte(i) = (i \\ 52) * 63\n"
         "Next\n"
         "self.TransformColorsQRZ(steps, steps, steps)",
         "One table for all three leaves five levels in each channel: a poster."}}},
      {"Picture",
       "ReplaceColorQRZ(SearchColor as color, ReplaceWithColor as color) as picture",
       "Replaces one exact colour by another and copies all others.",
       {{"SearchColor", "the colour to replace; nothing near it counts", kAnyColor},
        {"ReplaceWithColor", "what takes its place", kAnyColor}},
       kNoNewPicture,
       {{"edges", "self.ReplaceColorQRZ(&cFABA1A, &c2E9E5B)",
         "Yellow turns green, except where edges are blended."}}},
      {"Picture",
       "ExtractColorQRZ(SearchColor as color, ReplaceWithColor as color, BackGroundColor as "
       "color) as picture",
       "Shows in two colours where one exact colour is and where it is not.",
       {{"SearchColor", "the colour to look for; nothing near it counts", kAnyColor},
        {"ReplaceWithColor", "what is written where it is", kAnyColor},
        {"BackGroundColor", "what is written everywhere else", kAnyColor}},
       kNoNewPicture,
       {{"edges", "self.ExtractColorQRZ(&cDB2924, &c000000, &cE8E8E8)",
         "All that is red, in black."}}},
  };
  return kMembers;
}

}  // namespace host
