#include "host/manual/groups.h"

namespace host {

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

/// Warm tones.
#define SEPIA                          \
  "Dim sepia As New PictureSepiaQRZ\n" \
  "sepia.SourcePicture = self\n"       \
  "sepia.SepiaRed = 40\n"              \
  "sepia.SepiaGreen = 14\n"            \
  "sepia.SepiaBlue = -26\n"

std::span<const Recipe> filterRecipes() {
  static constexpr Recipe kRecipes[] = {
      {"PictureLut3DQRZ", "Run as boolean", "landscape",
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
      {"PictureLut3DQRZ", "SourcePicture as Picture", "colors@240x160",
       "Dim lut As New PictureLut3DQRZ\nlut.SourcePicture = self\nresult = lut.SourcePicture",
       "The picture that Run maps."},
      {"PictureLut3DQRZ", "DestinationPicture as Picture", "colors@240x160",
       "Dim lut As New PictureLut3DQRZ\nlut.SourcePicture = self\nCall lut.Run\n"
       "result = lut.DestinationPicture",
       "The result of Run. A table that was never filled makes every pixel black."},
      {"PictureLut3DQRZ", "MaxX as Integer", "gradients@240x160",
       FILLED_TABLE "lut.MaxX = 80\nCall lut.Run\nresult = lut.DestinationPicture",
       "The column after the last one that is mapped; the rest stays white."},
      {"PictureLut3DQRZ", "MinX as Integer", "gradients@240x160",
       FILLED_TABLE "lut.MinX = 80\nCall lut.Run\nresult = lut.DestinationPicture",
       "The first column that is mapped."},
      {"PictureLut3DQRZ", "MaxY as Integer", "gradients@240x160",
       FILLED_TABLE "lut.MaxY = 50\nCall lut.Run\nresult = lut.DestinationPicture",
       "The row after the last one that is mapped."},
      {"PictureLut3DQRZ", "MinY as Integer", "gradients@240x160",
       FILLED_TABLE "lut.MinY = 50\nCall lut.Run\nresult = lut.DestinationPicture",
       "The first row that is mapped."},
      {"PictureLut3DQRZ", "Table(r as integer, g as integer, b as integer, x as integer) as double",
       "edges",
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
      {"PictureLut3DQRZ", "Close", "colors@240x160",
       "Dim lut As New PictureLut3DQRZ\nlut.SourcePicture = self\nlut.Close\n"
       "result = lut.SourcePicture Is Nil",
       "Releases both pictures; the table stays."},
      {"PictureSepiaQRZ", "Run as boolean", "landscape",
       SEPIA "Call sepia.Run\nresult = sepia.DestinationPicture",
       "A grey from weighted red, green and blue, and an offset for each channel."},
      {"PictureSepiaQRZ", "SourcePicture as Picture", "landscape@240x160",
       SEPIA "result = sepia.SourcePicture", "The picture that Run tones; it stays as it is."},
      {"PictureSepiaQRZ", "DestinationPicture as Picture", "colors@240x160",
       "Dim sepia As New PictureSepiaQRZ\nsepia.SourcePicture = self\nCall sepia.Run\n"
       "result = sepia.DestinationPicture",
       "The result of Run. Without offsets it is a grey picture."},
      {"PictureSepiaQRZ", "MaxX as Integer", "landscape@240x160",
       SEPIA "sepia.MaxX = 120\nCall sepia.Run\nresult = sepia.DestinationPicture",
       "The column after the last one that is toned; the rest stays white."},
      {"PictureSepiaQRZ", "MinX as Integer", "landscape@240x160",
       SEPIA "sepia.MinX = 120\nCall sepia.Run\nresult = sepia.DestinationPicture",
       "The first column that is toned."},
      {"PictureSepiaQRZ", "MaxY as Integer", "landscape@240x160",
       SEPIA "sepia.MaxY = 80\nCall sepia.Run\nresult = sepia.DestinationPicture",
       "The row after the last one that is toned."},
      {"PictureSepiaQRZ", "MinY as Integer", "landscape@240x160",
       SEPIA "sepia.MinY = 80\nCall sepia.Run\nresult = sepia.DestinationPicture",
       "The first row that is toned."},
      {"PictureSepiaQRZ", "SepiaRed as Integer", "landscape@240x160",
       "Dim sepia As New PictureSepiaQRZ\nsepia.SourcePicture = self\n"
       "sepia.SepiaRed = 60\nCall sepia.Run\nresult = sepia.DestinationPicture",
       "Added to the red of every pixel; alone it makes a red tone."},
      {"PictureSepiaQRZ", "SepiaGreen as Integer", "landscape@240x160",
       "Dim sepia As New PictureSepiaQRZ\nsepia.SourcePicture = self\n"
       "sepia.SepiaGreen = 60\nCall sepia.Run\nresult = sepia.DestinationPicture",
       "Added to the green of every pixel."},
      {"PictureSepiaQRZ", "SepiaBlue as Integer", "landscape@240x160",
       "Dim sepia As New PictureSepiaQRZ\nsepia.SourcePicture = self\n"
       "sepia.SepiaBlue = 60\nCall sepia.Run\nresult = sepia.DestinationPicture",
       "Added to the blue of every pixel: here a blueprint."},
      {"PictureSepiaQRZ", "FactorRed as Double", "colors@240x160",
       "Dim sepia As New PictureSepiaQRZ\nsepia.SourcePicture = self\n"
       "sepia.FactorRed = 1\nsepia.FactorGreen = 0\nsepia.FactorBlue = 0\n"
       "Call sepia.Run\nresult = sepia.DestinationPicture",
       "How much red counts in the grey, 0.299 if nothing is assigned; with 1 and no others, red "
       "balls are the lightest."},
      {"PictureSepiaQRZ", "FactorBlue as Double", "colors@240x160",
       "Dim sepia As New PictureSepiaQRZ\nsepia.SourcePicture = self\n"
       "sepia.FactorBlue = 1\nsepia.FactorRed = 0\nsepia.FactorGreen = 0\n"
       "Call sepia.Run\nresult = sepia.DestinationPicture",
       "How much blue counts; 0.114 if nothing is assigned."},
      {"PictureSepiaQRZ", "FactorGreen as Double", "colors@240x160",
       "Dim sepia As New PictureSepiaQRZ\nsepia.SourcePicture = self\n"
       "sepia.FactorGreen = 1\nsepia.FactorRed = 0\nsepia.FactorBlue = 0\n"
       "Call sepia.Run\nresult = sepia.DestinationPicture",
       "How much green counts; 0.587 if nothing is assigned."},
      {"PictureSepiaQRZ", "Close", "landscape@240x160",
       SEPIA "sepia.Close\nresult = sepia.SourcePicture Is Nil",
       "Releases both pictures; offsets and weights stay."},
  };
  return kRecipes;
}

}  // namespace host
