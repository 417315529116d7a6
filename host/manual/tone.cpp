#include "host/manual/groups.h"

namespace host {

std::span<const Recipe> toneRecipes() {
  static constexpr Recipe kRecipes[] = {
      {"Picture", "ChangeBrightnessLinearQRZ(x as double) as picture", "landscape",
       "result = self.ChangeBrightnessLinearQRZ(120)",
       "Moves every channel 120 / 255 of its way to white; black becomes grey, white stays."},
      {"Picture", "ChangeBrightnessLinearQRZ(r as double, g as double, b as double) as picture",
       "landscape", "result = self.ChangeBrightnessLinearQRZ(90, 0, -120)",
       "One number per channel: red to white, green as it is, blue to black, an evening light."},
      {"Picture", "ChangeBrightnessAbsoluteQRZ(x as double) as picture", "landscape",
       "result = self.ChangeBrightnessAbsoluteQRZ(70)",
       "Adds 70 to every channel; what passes 255 stops there, so the sky loses its detail."},
      {"Picture", "ChangeBrightnessAbsoluteQRZ(r as double, g as double, b as double) as picture",
       "greys", "result = self.ChangeBrightnessAbsoluteQRZ(-40, 0, 60)",
       "One number per channel: less red and more blue make a cold light."},
      {"Picture", "ChangeContrastQRZ(x as double) as picture", "landscape",
       "result = self.ChangeContrastQRZ(0.8)",
       "Pushes every channel away from the middle, 127; 0 changes nothing, -1 makes all of it "
       "grey."},
      {"Picture", "ChangeContrastQRZ(xr as double, xg as double, xb as double) as picture",
       "colors", "result = self.ChangeContrastQRZ(1, 0, -1)",
       "One number per channel: steeper red, green as it is, and a blue of 127 everywhere."},
      {"Picture", "ChangeCustomQRZ(a as double, b as double) as picture", "greys",
       "result = self.ChangeCustomQRZ(-0.8, 230)",
       "Every channel times a plus b: here a soft negative."},
      {"Picture", "InvertQRZ as picture", "landscape", "result = self.InvertQRZ",
       "Every channel becomes 255 minus itself."},
      {"Picture",
       "InvertQRZ(left as integer,top as integer,width as integer,height as integer) as picture",
       "colors", "result = self.InvertQRZ(120, 60, 240, 200)",
       "Only the rectangle is written; the rest stays as the host makes a new picture: white."},
      {"Picture", "InvertGrayQRZ as picture", "greys", "result = self.InvertGrayQRZ",
       "Only pixels whose red, green and blue are equal are inverted."},
      {"Picture",
       "InvertGrayQRZ(left as integer,top as integer,width as integer,height as integer) as "
       "picture",
       "greys", "result = self.InvertGrayQRZ(0, 0, 240, -1)",
       "A negative width or height stands for the picture's own."},
  };
  return kRecipes;
}

}  // namespace host
