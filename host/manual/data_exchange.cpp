#include "host/manual/groups.h"

namespace host {

std::span<const Recipe> dataRecipes() {
  static constexpr Recipe kRecipes[] = {
      {"", "PicturetoBinaryStringQRZ(p as picture) as string", "colors",
       R"(Dim data As String = PicturetoBinaryStringQRZ(self)
result = Left(data, 4) + ", " + Str(Len(data)) + " bytes")",
       "A picture as a string of bytes: a header of 40, then red, green and blue of every pixel."},
      {"", "BinaryStringtoPictureQRZ(data as String) as Picture", "colors",
       R"(Dim data As String = PicturetoBinaryStringQRZ(self)
Dim rows As Integer = 3 * self.Width * 120
data = Left(data, 40) + Mid(data, 41 + rows) + Mid(data, 41, rows)
result = BinaryStringtoPictureQRZ(data))",
       "And back. Between the two the bytes of the uppermost 120 rows were moved to the end."},
      {"Picture", "PicHandleQRZ as picture", "landscape", "result = self.PicHandleQRZ",
       "The picture as a recording of drawing commands, PICT data, drawn again."},
      {"Picture", "PicHandleDataQRZ as string", "landscape",
       "result = Str(Len(self.PicHandleDataQRZ)) + \" bytes\"",
       "The bytes of such a recording as a string."},
      {"", "BuildPictureWithPicHandleDataQRZ(data as string) as picture", "landscape",
       "result = BuildPictureWithPicHandleDataQRZ(self.PicHandleDataQRZ)",
       "A picture from the bytes of a recording."},
      {"",
       "BuildPictureWithGWorldHandleQRZ(handle as integer, ByPassOwernerShip as boolean) as "
       "picture",
       "landscape",
       R"(Dim shown As Picture = BuildPictureWithGWorldHandleQRZ(self.Graphics.Handle, False)
If shown Is Nil Then shown = self  ' no offscreen world behind it
shown.Graphics.ForeColor = &cFFC000
shown.Graphics.FillRect(40, 40, 80, 80)
result = self)",
       "A second picture of the same offscreen world: what is drawn into it is drawn into both."},
  };
  return kRecipes;
}

}  // namespace host
