#include "host/manual/groups.h"
#include "host/manual/phrases.h"

namespace host {
namespace {

constexpr std::string_view kHistogram =
    "a memory block of 1024 bytes or more, whose 256 counters are added to, not cleared, or nil, "
    "for which the variable receives a new one";
constexpr std::string_view kUnread = "False if the picture is nil or cannot be read.";

/// Marks the tiles that pass the test.
std::string markedTiles(const std::string& test, const std::string& color) {
  return "self.Graphics.ForeColor = " + color + R"(
For y As Integer = 0 To self.Height - 20 Step 20
  For x As Integer = 0 To self.Width - 20 Step 20
    If self.)" +
         test + R"((x, y, 20, 20) Then self.Graphics.FillRect(x + 5, y + 5, 10, 10)
  Next
Next
self)";
}

}  // namespace

std::span<const Description> searchMembers() {
  static const Description kMembers[] = {
      {"Picture",
       "FindPicture(pic as picture, byref x as integer, byref y as integer) as boolean",
       "Finds where a smaller picture occurs in this one, all colours exactly equal: the topmost "
       "place, and of those the leftmost.",
       {{"pic", "the picture to look for", "a picture, not larger than this one"},
        {"x", "receives the column of its left edge in this picture",
         "a variable; 0 if it is not found"},
        {"y", "receives the row of its upper edge", "a variable; 0 if it is not found"}},
       "False, with 0 in x and y, if pic does not occur, is larger or nil, or either picture "
       "cannot be read.",
       {{"colors",
         R"(Dim part As New Picture(84, 84, 32)
part.Graphics.DrawPicture(self, 0, 0, 84, 84, 256, 172, 84, 84)
Dim x, y As Integer
Call self.FindPicture(part, x, y)
self.Graphics.ForeColor = &cFFFFFF
self.Graphics.FillRect(x - 4, y - 4, 92, 92)
self.Graphics.DrawPicture(part, x, y)
self)",
         "A part of the picture is looked for; the frame is drawn around the place."}}},
      {"Picture",
       "CountColorQRZ(col as color) as integer",
       "Counts the pixels of exactly one colour.",
       {{"col", "the colour to count; nothing near it counts", kAnyColor}},
       "0 if the picture is nil or cannot be read.",
       {{"edges", "self.CountColorQRZ(&cFABA1A)", "So many pixels are yellow.", false},
        {"edges",
         R"(Dim colors(4) As Color
colors(0) = &c0D0F14
colors(1) = &cF7F5ED
colors(2) = &cFABA1A
colors(3) = &c1254B8
colors(4) = &cDB2924
Dim bars As New Picture(480, 250, 32)
For i As Integer = 0 To 4
  Dim share As Double = self.CountColorQRZ(colors(i)) / (self.Width * self.Height)
  bars.Graphics.ForeColor = &cD0D0D0
  bars.Graphics.FillRect(0, 50 * i + 4, 480, 42)
  bars.Graphics.ForeColor = colors(i)
  bars.Graphics.FillRect(0, 50 * i + 4, 480 * share, 42)
Next
bars)",
         "The shares of five colours of the picture."}}},
      {"Picture",
       "CountColorsQRZ(byref red as memoryblock, byref blue as memoryblock, byref green as "
       "memoryblock, byref count as integer)",
       "Adds the picture to three histograms: of red, green and blue, in the order of the "
       "arguments whatever their names say.",
       {{"red", "counts the levels of red: Long(4 * i) is how often level i occurs", kHistogram},
        {"blue", "counts the levels of green, likewise", kHistogram},
        {"green", "counts the levels of blue, likewise", kHistogram},
        {"count", "receives the number of pixels of the picture",
         "a variable; -1 if nothing was counted"}},
       "A count of -1, and nothing added, if the picture is nil or cannot be read, a block is "
       "shorter than "
       "1024 bytes, or there is no memory for a new one.",
       {{"landscape",
         R"(Dim first, second, third As MemoryBlock
Dim count As Integer
self.CountColorsQRZ(first, second, third, count)
Sub Bars(target As Picture, levels As MemoryBlock, ink As Color, bottom As Integer)
  Dim most As Integer = 1
  For i As Integer = 0 To 255
    most = Max(most, levels.Long(4 * i))
  Next
  target.Graphics.ForeColor = ink
  For i As Integer = 0 To 255
    Dim h As Integer = 90 * levels.Long(4 * i) / most
    target.Graphics.FillRect(2 * i, bottom - h, 2, h)
  Next
End Sub
Dim sheet As New Picture(512, 300, 32)
Bars(sheet, first, &cD03030, 96)
Bars(sheet, second, &c30A040, 196)
Bars(sheet, third, &c3060D0, 296)
sheet)",
         "How often each level of red, green and blue occurs."}}},
      {"Picture",
       "isWhiteQRZ as boolean",
       "Tells whether every pixel is white.",
       {},
       kUnread,
       {{"greys", "self.ChangeBrightnessLinearQRZ(255).isWhiteQRZ",
         "All of it is, after fading all the way.", false}}},
      {"Picture",
       "isWhiteQRZ(left as integer,top as integer,width as integer,height as integer) as boolean",
       "Tells whether every pixel of a rectangle is white; also where the rectangle holds none.",
       rectangleArguments(),
       kUnread,
       {{"greys", "self.isWhiteQRZ(0, 0, 20, 20)", "The corner is not white.", false},
        {"greys", markedTiles("isWhiteQRZ", "&cFF8000"),
         "Tiles that are wholly white are marked."}}},
      {"Picture",
       "isBlackQRZ as boolean",
       "Tells whether every pixel is black.",
       {},
       kUnread,
       {{"greys", "self.isBlackQRZ", "Not every pixel is black here.", false}}},
      {"Picture",
       "isBlackQRZ(left as integer,top as integer,width as integer,height as integer) as boolean",
       "Tells whether every pixel of a rectangle is black; also where the rectangle holds none.",
       rectangleArguments(),
       kUnread,
       {{"greys", "self.isBlackQRZ(0, 0, 20, 20)", "The corner is black.", false},
        {"greys", markedTiles("isBlackQRZ", "&c00C0FF"),
         "Tiles that are wholly black are marked."}}},
  };
  return kMembers;
}

}  // namespace host
