#include "host/manual/groups.h"
#include "host/manual/phrases.h"

namespace host {
namespace {

constexpr std::string_view kFade =
    "0 to 255 towards white (255), 0 to -255 towards black (0); results lose their fractions; "
    "those that leave 0 to 255, as further values make them, wrap around: 256 becomes 0, -1 255";
constexpr std::string_view kSlope =
    "any number: above 0 steeper, 0 to -1 flatter, below -1 inverted; results lose their fractions "
    "and stop at 0 and 255";

}  // namespace

std::span<const Description> toneMembers() {
  static const Description kMembers[] = {
      {"Picture",
       "ChangeBrightnessLinearQRZ(x as double) as picture",
       "Moves every channel a part of its way to white or to black, so that nothing is cut off.",
       {{"x", "how far, in 255ths of the way", kFade}},
       kNoNewPicture,
       {{"landscape", "self.ChangeBrightnessLinearQRZ(120)",
         "120 / 255 of the way to white: black becomes grey, white stays."}}},
      {"Picture",
       "ChangeBrightnessLinearQRZ(r as double, g as double, b as double) as picture",
       "Moves each channel its own part of the way to 255 or to 0.",
       {{"r", "how far red moves, in 255ths of the way", kFade},
        {"g", "how far green moves, likewise", kFade},
        {"b", "how far blue moves, likewise", kFade}},
       kNoNewPicture,
       {{"landscape", "self.ChangeBrightnessLinearQRZ(90, 0, -120)",
         "More red, green as it is, less blue: an evening light."}}},
      {"Picture",
       "ChangeBrightnessAbsoluteQRZ(x as double) as picture",
       "Adds the same number to every channel, which makes the picture lighter or, if it is "
       "negative, darker.",
       {{"x", "what is added", kAnyNumber}},
       kNoNewPicture,
       {{"landscape", "self.ChangeBrightnessAbsoluteQRZ(70)",
         "What passes 255 stops there, so the sky around the sun loses its detail."}}},
      {"Picture",
       "ChangeBrightnessAbsoluteQRZ(r as double, g as double, b as double) as picture",
       "Adds to each channel a number of its own.",
       {{"r", "what is added to red", kAnyNumber},
        {"g", "what is added to green", kAnyNumber},
        {"b", "what is added to blue", kAnyNumber}},
       kNoNewPicture,
       {{"greys", "self.ChangeBrightnessAbsoluteQRZ(-40, 0, 60)",
         "Less red and more blue make a cold light."}}},
      {"Picture",
       "ChangeContrastQRZ(x as double) as picture",
       "Multiplies the distance of every channel from the middle, 127, by 1 + x.",
       {{"x", "how much steeper; 0 changes nothing, -1 makes all of it 127", kSlope}},
       kNoNewPicture,
       {{"landscape", "self.ChangeContrastQRZ(0.8)",
         "Light becomes lighter and dark darker, up to white and black."}}},
      {"Picture",
       "ChangeContrastQRZ(xr as double, xg as double, xb as double) as picture",
       "Multiplies the distance of each channel from the middle, 127, by 1 plus a number of its "
       "own.",
       {{"xr", "how much steeper red becomes; 0 changes nothing, -1 makes it 127", kSlope},
        {"xg", "how much steeper green becomes, likewise", kSlope},
        {"xb", "how much steeper blue becomes, likewise", kSlope}},
       kNoNewPicture,
       {{"colors", "self.ChangeContrastQRZ(1, 0, -1)",
         "Steeper red, green as it is, and a blue of 127 everywhere."}}},
      {"Picture",
       "ChangeCustomQRZ(a as double, b as double) as picture",
       "Replaces every channel value v by a × v + b.",
       {{"a", "what the channel is multiplied by", kAnyNumber},
        {"b", "what is added then", kAnyNumber}},
       kNoNewPicture,
       {{"greys", "self.ChangeCustomQRZ(-0.8, 230)", "A soft negative."}}},
      {"Picture",
       "InvertQRZ as picture",
       "Makes the negative: every channel becomes 255 minus itself.",
       {},
       kNoNewPicture,
       {{"landscape", "self.InvertQRZ", "Light becomes dark, and each colour its opposite."}}},
      {"Picture",
       "InvertQRZ(left as integer,top as integer,width as integer,height as integer) as picture",
       "Makes the negative of a rectangle; the rest of the new picture is left as the host makes "
       "it, white.",
       rectangleArguments(),
       kNoNewPicture,
       {{"colors", "self.InvertQRZ(120, 60, 240, 200)",
         "Only the rectangle is written; the rest is not copied."}}},
      {"Picture",
       "InvertGrayQRZ as picture",
       "Inverts the grey pixels, whose red, green and blue are equal, and copies the others.",
       {},
       kNoNewPicture,
       {{"greys", "self.InvertGrayQRZ",
         "What has a colour stays as it is; grey highlights on the coloured balls are inverted, "
         "too."}}},
      {"Picture",
       "InvertGrayQRZ(left as integer,top as integer,width as integer,height as integer) as "
       "picture",
       "Inverts the grey pixels of a rectangle and copies its others; the rest of the new picture "
       "is left as the host makes it, white.",
       rectangleArguments(),
       kNoNewPicture,
       {{"greys", "self.InvertGrayQRZ(0, 0, 240, -1)",
         "A negative height stands for the picture's own."}}},
  };
  return kMembers;
}

}  // namespace host
