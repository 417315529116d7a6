#include "host/manual/groups.h"

namespace host {

/// Frames the tiles that pass the test.
#define FRAMED_TILES(TEST, COLOR)                       \
  "Dim g As Graphics = self.Graphics\n"                 \
  "g.ForeColor = " COLOR                                \
  "\n"                                                  \
  "For y As Integer = 0 To self.Height - 20 Step 20\n"  \
  "  For x As Integer = 0 To self.Width - 20 Step 20\n" \
  "    If self." TEST                                   \
  "(x, y, 20, 20) Then\n"                               \
  "      g.FillRect(x + 5, y + 5, 10, 10)\n"            \
  "    End If\n"                                        \
  "  Next\n"                                            \
  "Next\n"                                              \
  "result = self"

std::span<const Recipe> searchRecipes() {
  static constexpr Recipe kRecipes[] = {
      {"Picture", "FindPicture(pic as picture, byref x as integer, byref y as integer) as boolean",
       "colors",
       R"(Dim part As New Picture(84, 84, 32)
part.Graphics.DrawPicture(self, 0, 0, 84, 84, 256, 172, 84, 84)
Dim x, y As Integer
If self.FindPicture(part, x, y) Then
  Dim g As Graphics = self.Graphics
  g.ForeColor = &cFFFFFF
  g.PenWidth = 4
  g.PenHeight = 4
  g.DrawLine(x - 4, y - 4, x + 84, y - 4)
  g.DrawLine(x - 4, y + 84, x + 84, y + 84)
  g.DrawLine(x - 4, y - 4, x - 4, y + 84)
  g.DrawLine(x + 84, y - 4, x + 84, y + 84)
End If
result = self)",
       "Finds where a smaller picture occurs, exact to the pixel; the frame is drawn around "
       "the place."},
      {"Picture", "CountColorQRZ(col as color) as integer", "edges",
       R"(Dim colors(4) As Color
colors(0) = &c0D0F14
colors(1) = &cF7F5ED
colors(2) = &cFABA1A
colors(3) = &c1254B8
colors(4) = &cDB2924
result = New Picture(480, 250, 32)
For i As Integer = 0 To 4
  Dim share As Double = self.CountColorQRZ(colors(i)) / (self.Width * self.Height)
  result.Graphics.ForeColor = &cD0D0D0
  result.Graphics.FillRect(0, 50 * i + 4, 480, 42)
  result.Graphics.ForeColor = colors(i)
  result.Graphics.FillRect(0, 50 * i + 4, 480 * share, 42)
Next)",
       "How many pixels have exactly one colour; the bars show the shares of five of them."},
      {"Picture",
       "CountColorsQRZ(byref red as memoryblock, byref blue as memoryblock, byref green as "
       "memoryblock, byref count as integer)",
       "landscape",
       R"(Dim first, second, third As MemoryBlock
Dim count As Integer
self.CountColorsQRZ(first, second, third, count)
Sub Bars(levels As MemoryBlock, ink As Color, bottom As Integer)
  Dim most As Integer = 1
  For i As Integer = 0 To 255
    most = Max(most, levels.Long(4 * i))
  Next
  result.Graphics.ForeColor = ink
  For i As Integer = 0 To 255
    Dim h As Integer = 90 * levels.Long(4 * i) / most
    result.Graphics.FillRect(2 * i, bottom - h, 2, h)
  Next
End Sub
result = New Picture(512, 300, 32)
Bars(first, &cD03030, 96)
Bars(second, &c30A040, 196)
Bars(third, &c3060D0, 296))",
       "Three histograms, as memory blocks of 256 counters: red, green and blue, in the order of "
       "the arguments whatever their names say."},
      {"Picture", "isWhiteQRZ as boolean", "greys",
       "result = self.ChangeBrightnessLinearQRZ(255).isWhiteQRZ",
       "True if every pixel is white, as it is after fading all the way."},
      {"Picture",
       "isWhiteQRZ(left as integer,top as integer,width as integer,height as integer) as boolean",
       "greys", FRAMED_TILES("isWhiteQRZ", "&cFF8000"),
       "A part of the picture: tiles that are wholly white are marked."},
      {"Picture", "isBlackQRZ as boolean", "greys", "result = self.isBlackQRZ",
       "True if every pixel is black; here few are."},
      {"Picture",
       "isBlackQRZ(left as integer,top as integer,width as integer,height as integer) as boolean",
       "greys", FRAMED_TILES("isBlackQRZ", "&c00C0FF"),
       "A part of the picture: tiles that are wholly black are marked."},
  };
  return kRecipes;
}

}  // namespace host
