#include "host/gallery/recipes.h"

namespace host {
namespace {

/// A table that passes the channels round.
#define FILLED_TABLE                       \
  "Dim lut As New PictureLut3DQRZ\n"       \
  "For r As Integer = 0 To 15\n"           \
  "  For g As Integer = 0 To 15\n"         \
  "    For b As Integer = 0 To 15\n"       \
  "      lut.Table(r, g, b, 0) = 17 * b\n" \
  "      lut.Table(r, g, b, 1) = 17 * r\n" \
  "      lut.Table(r, g, b, 2) = 17 * g\n" \
  "    Next\n"                             \
  "  Next\n"                               \
  "Next\n"                                 \
  "lut.SourcePicture = self\n"

const Recipe allRecipes[] = {
    {"Tone", "Picture", "InvertQRZ as picture", "landscape", "result = self.InvertQRZ",
     "Every channel becomes 255 minus itself."},
    {"Tone", "Picture",
     "InvertQRZ(left as integer,top as integer,width as integer,height as integer) as picture",
     "colors", "result = self.InvertQRZ(120, 60, 240, 200)",
     "Only the rectangle is written; the rest stays as the host makes a new picture: white."},
    {"Tone", "Picture", "InvertGrayQRZ as picture", "greys", "result = self.InvertGrayQRZ",
     "Only pixels whose red, green and blue are equal are inverted."},
    {"Tone", "Picture",
     "InvertGrayQRZ(left as integer,top as integer,width as integer,height as integer) as picture",
     "greys", "result = self.InvertGrayQRZ(0, 0, 240, -1)",
     "A negative width or height stands for the picture's own."},

    {"Filters", "PictureLut3DQRZ", "Run as boolean", "landscape",
     R"(Dim lut As New PictureLut3DQRZ
For r As Integer = 0 To 15
  For g As Integer = 0 To 15
    For b As Integer = 0 To 15
      lut.Table(r, g, b, 0) = Min(255, 17 * r * 1.15 + 12)
      lut.Table(r, g, b, 1) = 17 * g * 0.95
      lut.Table(r, g, b, 2) = 17 * b * 0.7 + 30
    Next
  Next
Next
lut.SourcePicture = self
If lut.Run Then result = lut.DestinationPicture)",
     "A table of 16 x 16 x 16 colours, interpolated between its points."},
    {"Filters", "PictureLut3DQRZ", "SourcePicture as Picture", "colors",
     "Dim lut As New PictureLut3DQRZ\nlut.SourcePicture = self\nresult = lut.SourcePicture",
     "The picture that Run maps."},
    {"Filters", "PictureLut3DQRZ", "DestinationPicture as Picture", "colors",
     "Dim lut As New PictureLut3DQRZ\nlut.SourcePicture = self\nCall lut.Run\n"
     "result = lut.DestinationPicture",
     "The result of Run. A table that was never filled makes every pixel black."},
    {"Filters", "PictureLut3DQRZ", "MaxX as Integer", "gradients",
     FILLED_TABLE "lut.MaxX = 160\nCall lut.Run\nresult = lut.DestinationPicture",
     "The column after the last one that is mapped; the rest stays white."},
    {"Filters", "PictureLut3DQRZ", "MinX as Integer", "gradients",
     FILLED_TABLE "lut.MinX = 160\nCall lut.Run\nresult = lut.DestinationPicture",
     "The first column that is mapped."},
    {"Filters", "PictureLut3DQRZ", "MaxY as Integer", "gradients",
     FILLED_TABLE "lut.MaxY = 100\nCall lut.Run\nresult = lut.DestinationPicture",
     "The row after the last one that is mapped."},
    {"Filters", "PictureLut3DQRZ", "MinY as Integer", "gradients",
     FILLED_TABLE "lut.MinY = 100\nCall lut.Run\nresult = lut.DestinationPicture",
     "The first row that is mapped."},
    {"Filters", "PictureLut3DQRZ",
     "Table(r as integer, g as integer, b as integer, x as integer) as double", "edges",
     R"(Dim lut As New PictureLut3DQRZ
For r As Integer = 0 To 15
  For g As Integer = 0 To 15
    For b As Integer = 0 To 15
      For x As Integer = 0 To 2
        lut.Table(r, g, b, x) = 17 * (r * (2 - x) + b * x) / 2
      Next
    Next
  Next
Next
lut.SourcePicture = self
If lut.Run Then result = lut.DestinationPicture)",
     "Red, green and blue in, one output channel x: any formula fills the table."},
    {"Filters", "PictureLut3DQRZ", "Close", "colors",
     "Dim lut As New PictureLut3DQRZ\nlut.SourcePicture = self\nlut.Close\n"
     "result = lut.SourcePicture Is Nil",
     "Releases both pictures; the table stays."},

    {"Other systems", "Picture", "MakeHBITMAPQRZ as integer", "edges",
     "result = self.MakeHBITMAPQRZ", "Always 0 here."},
    {"Other systems", "Graphics",
     "StretchDIBitsQRZ(XDest as integer, YDest as integer, DestWidth as integer, DestHeight as "
     "integer, XSource as integer, YSource as integer, SourceWidth as integer, SourceHeight as "
     "integer, Bits as memoryblock, ImageWidth as integer, ImageHeight as integer, ImageBitCount "
     "as integer) as boolean",
     "edges",
     "result = self.Graphics.StretchDIBitsQRZ(0, 0, 8, 8, 0, 0, 8, 8, New MemoryBlock(256), 8, 8, "
     "32)",
     "Draws nothing here and says so: false."},
    {"Other systems", "Graphics", "PaintDesktopQRZ", "edges",
     "self.Graphics.PaintDesktopQRZ\nresult = self", "Does nothing here."},
};

}  // namespace

std::span<const Recipe> recipes() { return allRecipes; }

}  // namespace host
