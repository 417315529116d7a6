// Scripts can use every member that the plug-in registers: each in one line, with what it gives.

#include <gtest/gtest.h>

#include <span>
#include <string>

#include "tests/support/command.h"

namespace host {
namespace {

struct Line {
  const char* script;
  const char* output;
};

/// `p` has 4 x 2 pixels of &c0A141E, the last one is &cC86432. Show prints a picture's size, its
/// first and its last pixel.
constexpr const char* kPrologue = R"(Sub Show(result As Picture)
  If result Is Nil Then
    Print "nil"
    Return
  End If
  Dim w As Integer = result.Width
  Dim h As Integer = result.Height
  Print w, h, result.Graphics.Pixel(0, 0), result.Graphics.Pixel(w - 1, h - 1)
End Sub
Dim p As New Picture(4, 2, 32)
p.Graphics.ForeColor = &c0A141E
p.Graphics.FillRect(0, 0, 4, 2)
p.Graphics.Pixel(3, 1) = &cC86432
)";

constexpr Line kAdjusting[] = {
    {"Show(p.ChangeBrightnessLinearQRZ(128))", "4 2 &c84898E &cE3B198"},
    {"Show(p.ChangeBrightnessLinearQRZ(255, 0, -255))", "4 2 &cFF1400 &cFF6400"},
    {"Show(p.ChangeBrightnessAbsoluteQRZ(100.9))", "4 2 &c6E7882 &cFFC896"},
    {"Show(p.ChangeBrightnessAbsoluteQRZ(1, 2.5, -300))", "4 2 &c0B1600 &cC96600"},
    {"Show(p.ChangeContrastQRZ(-1))", "4 2 &c7F7F7F &c7F7F7F"},
    {"Show(p.ChangeContrastQRZ(0, 1, -2))", "4 2 &c0A00E0 &cC849CC"},
    {"Show(p.ChangeCustomQRZ(-1, 255))", "4 2 &cF5EBE1 &c379BCD"},
    {"Show(p.InvertQRZ)", "4 2 &cF5EBE1 &c379BCD"},
    {"Show(p.InvertQRZ(3, 1, 9, 9))", "4 2 &cFFFFFF &c379BCD"},
    {"Show(p.InvertGrayQRZ)", "4 2 &c0A141E &cC86432"},
    {"Show(p.InvertGrayQRZ(0, 0, 1, -1))", "4 2 &c0A141E &cFFFFFF"},
    {"Show(p.ChangeSaturationQRZ(100))", "4 2 &c071421 &cE85E19"},
    {"Show(TintPictureQRZ(p, &cFFFFFF, &cFF8000))", "4 2 &c3C1E00 &cFFAF00"},
    {"Show(p.ReplaceRedChannelQRZ(p.InvertQRZ))", "4 2 &cF5141E &c376432"},
    {"Show(p.ReplaceGreenChannelQRZ(New Picture(3, 2, 32)))", "nil"},
    {"Show(p.ReplaceBlueChannelQRZ(New Picture(5, 2)))", "4 2 &c0A14FF &cC864FF"},
    {"Try\nShow(p.ReplaceBlueChannelQRZ(Nil))\nCatch e As NilObjectException\n"
     "Print e.Message\nEnd Try",
     "The channel picture is nil."},
    {"Show(CombinePicturesQRZ(p, p.InvertQRZ, New Picture(4, 2)))", "4 2 &c0AFFE1 &cC8FFCD"},
    {"Show(MergePictureQRZ(p, p.InvertQRZ))", "4 2 &cF5EBE1 &cC89BCD"},
    {"Show(p.ReplaceColorQRZ(&c0A141E, &cFFFFFF))", "4 2 &cFFFFFF &cC86432"},
    {"Show(p.ExtractColorQRZ(RGB(200, 100, 50), 1, &c000002))", "4 2 &c000002 &c000001"},
    {"Dim t As New MemoryBlock(256)\nt.Byte(10) = 1\nt.Byte(30) = 3\nt.Byte(200) = 255\n"
     "Show(p.TransformColorsQRZ(t, New MemoryBlock(256), t))",
     "4 2 &c010000 &cFF0000"},
};

constexpr Line kAnalysing[] = {
    // Blocks that are nil come back filled.
    {"Dim r, g, b As MemoryBlock\nDim n As Integer = 77\np.CountColorsQRZ(r, g, b, n)\n"
     "Print n, r.Size, r.Long(40), r.UInt32Value(800), g.Int32Value(80), b.Long(120)",
     "8 1024 7 1 7 7"},
    {"Print p.CountColorQRZ(&c0A141E), p.CountColorQRZ(0)", "7 0"},
    {"Dim x, y As Integer\nDim part As New Picture(1, 1)\npart.Graphics.Pixel(0, 0) = &cC86432\n"
     "Print p.FindPicture(part, x, y), x, y",
     "True 3 1"},
    {"Print part.FindPicture(p, x, y), x, y", "False 0 0"},
    {"Print p.isWhiteQRZ, p.isBlackQRZ, p.InvertQRZ(0, 0, 0, 0).isWhiteQRZ", "False False True"},
    {"Print p.isWhiteQRZ(0, 0, 0, 0), p.isBlackQRZ(3, 1, 1, 1)", "True False"},
    {"Print p.HasMaskQRZ\np.Mask = New Picture(4, 2)\nPrint p.HasMaskQRZ\np.Mask = Nil",
     "False\nTrue"},
    {"Dim m As New Picture(4, 2)\nm.Graphics.Pixel(0, 0) = &c400000\np.EmbeddedMaskQRZ(False) = m\n"
     "Print p.EmbeddedMaskQRZ(False).Graphics.Pixel(0, 0)",
     "&c404040"},
    {"Show(p.ExtractColorRectangleMaskQRZ)", "4 2 &c000000 &c000000"},
    {"Show(p.ExtractColorRectangleMaskQRZ(3, 1, -1, -1))", "4 2 &cFFFFFF &c000000"},
    {"Print p.ScrollHorizontalQRZ(0, True, False), p.ScrollVerticalQRZ(0, False, True), "
     "p.ScrollQRZ(0, 0, True, True)",
     "True True True"},
};

constexpr Line kExchanging[] = {
    {"Dim d As String = PicturetoBinaryStringQRZ(p)\n"
     "Print Len(d), Left(d, 4), Asc(Mid(d, 12)), Asc(Mid(d, 41)), Asc(Right(d, 1))",
     "64 PPIC 4 10 50"},
    {"Show(BinaryStringtoPictureQRZ(d))", "4 2 &c0A141E &cC86432"},
    {"Show(p.PicHandleQRZ)", "4 2 &c0A141E &cC86432"},
    {"Show(BuildPictureWithPicHandleDataQRZ(p.PicHandleQRZ.PicHandleDataQRZ))",
     "4 2 &c0A141E &cC86432"},
    {"Show(BuildPictureWithGWorldHandleQRZ(0, True))", "nil"},
    {"Dim s As New MemoryBlock(8)\ns.Int8Value(0) = 10\ns.Int8Value(1) = 20\n"
     "Dim w As Picture = RenderSamplesQRZ(s, 0, 1, 4, 100, 0)\n"
     "Print w.Height, w.Graphics.Pixel(0, 40), w.Graphics.Pixel(0, 60)",
     "100 &c88B5C4 &c274C5A"},
    {"Print RenderSamplesQRZ(s, 0, 1, 4, 100, 1, &c010203, 0).Graphics.Pixel(3, 50)", "&c203F4E"},
    {"Dim sepia As New PictureSepiaQRZ\n"
     "Print sepia.Run, sepia.FactorRed, sepia.FactorGreen, sepia.FactorBlue, sepia.MaxX",
     "False 0.299 0.587 0.114 0"},
    {"sepia.SourcePicture = p\nsepia.SepiaRed = 40\nsepia.FactorBlue = 0.5\n"
     "sepia.FactorBlue = sepia.FactorBlue / 2\nPrint sepia.Run, sepia.FactorBlue\n"
     "Show(sepia.DestinationPicture)",
     "True 0.25\n4 2 &c3E1616 &cAA8282"},
    {"sepia.Close\nPrint sepia.SourcePicture Is Nil, sepia.DestinationPicture Is Nil", "True True"},
    {"Print p.MakeHBITMAPQRZ, "
     "p.Graphics.StretchDIBitsQRZ(0, 0, 1, 1, 0, 0, 1, 1, Nil, 1, 1, 32)",
     "0 False"},
    {"p.Graphics.PaintDesktopQRZ\nShow(p)", "4 2 &c0A141E &cC86432"},
};

class MemberScriptTest : public FolderTest, public testing::WithParamInterface<const char*> {
 protected:
  [[nodiscard]] Outcome run(const std::string& script) const {
    write("script.rbs", script);
    return qrz("--check --pictures " + std::string(GetParam()) + " run " + path("script.rbs"));
  }

  void check(std::span<const Line> lines) const {
    std::string script = kPrologue;
    std::string expected;
    for (const Line& line : lines) {
      script += line.script + std::string("\n");
      expected += line.output + std::string("\n");
    }
    const Outcome outcome = run(script);
    EXPECT_EQ(outcome.output, expected);
    EXPECT_EQ(outcome.status, 0);
  }
};

INSTANTIATE_TEST_SUITE_P(Pictures, MemberScriptTest, testing::Values("gworld", "context", "bitmap"),
                         [](const auto& pictures) { return pictures.param; });

TEST_P(MemberScriptTest, Adjusting) { check(kAdjusting); }
TEST_P(MemberScriptTest, Analysing) { check(kAnalysing); }
TEST_P(MemberScriptTest, ExchangingAndFiltering) { check(kExchanging); }

TEST_P(MemberScriptTest, PicturesOfOneWorldShareItsPixelsAsLongAsOneOfThemLives) {
  if (std::string(GetParam()) == "bitmap") {  // there are no worlds
    EXPECT_EQ(run("Dim a As New Picture(3, 3)\nPrint a.Graphics.Handle\n").output, "0\n");
    return;
  }
  const Outcome outcome = run(R"(Dim a As New Picture(3, 3)
Dim b As Picture = BuildPictureWithGWorldHandleQRZ(a.Graphics.Handle, True)
Dim c As Picture = BuildPictureWithGWorldHandleQRZ(a.Graphics.Handle, False)
b.Graphics.Pixel(1, 1) = &c123456
a = Nil
b = Nil
Print c.Graphics.Pixel(1, 1), c.InvertQRZ.Graphics.Pixel(1, 1)
Dim handle As Integer = c.Graphics.Handle
c = Nil
Print BuildPictureWithGWorldHandleQRZ(handle, True) Is Nil
)");
  EXPECT_EQ(outcome.output,
            "&c123456 &cEDCBA9\nTrue\n"
            "error: REALBuildPictureFromGWorld got a handle of no GWorld\n");
}

}  // namespace
}  // namespace host
