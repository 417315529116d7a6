// Values of every kind between scripts and the plug-in; the gallery runs every member.

#include <gtest/gtest.h>

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

constexpr Line kLines[] = {
    {"Show(p.ChangeBrightnessAbsoluteQRZ(1, 2.5, -300))", "4 2 &c0B1600 &cC96600"},
    {"Show(p.InvertQRZ(3, 1, 9, 9))", "4 2 &cFFFFFF &c379BCD"},
    {"Show(TintPictureQRZ(p, &cFFFFFF, &cFF8000))", "4 2 &c3C1E00 &cFFAF00"},
    {"Show(p.ReplaceGreenChannelQRZ(New Picture(3, 2, 32)))", "nil"},
    {"Try\nShow(p.ReplaceBlueChannelQRZ(Nil))\nCatch e As NilObjectException\n"
     "Print e.Message\nEnd Try",
     "The channel picture is nil."},
    // Blocks that are nil come back filled.
    {"Dim r, g, b As MemoryBlock\nDim n As Integer = 77\np.CountColorsQRZ(r, g, b, n)\n"
     "Print n, r.Size, r.Long(40), r.UInt32Value(800), g.Int32Value(80), b.Long(120)",
     "8 1024 7 1 7 7"},
    {"Dim x, y As Integer\nDim part As New Picture(1, 1)\npart.Graphics.Pixel(0, 0) = &cC86432\n"
     "Print p.FindPicture(part, x, y), x, y",
     "True 3 1"},
    {"Dim m As New Picture(4, 2)\nm.Graphics.Pixel(0, 0) = &c400000\np.EmbeddedMaskQRZ(False) = m\n"
     "Print p.EmbeddedMaskQRZ(False).Graphics.Pixel(0, 0)",
     "&c404040"},
    {"Dim d As String = PicturetoBinaryStringQRZ(p)\n"
     "Print Len(d), Left(d, 4), Asc(Mid(d, 12)), Asc(Mid(d, 41)), Asc(Right(d, 1))",
     "64 PPIC 4 10 50"},
    {"Show(BinaryStringtoPictureQRZ(d))", "4 2 &c0A141E &cC86432"},
    {"Show(BuildPictureWithPicHandleDataQRZ(p.PicHandleQRZ.PicHandleDataQRZ))",
     "4 2 &c0A141E &cC86432"},
    {"Dim sepia As New PictureSepiaQRZ\n"
     "Print sepia.Run, sepia.FactorRed, sepia.FactorGreen, sepia.FactorBlue, sepia.MaxX",
     "False 0.299 0.587 0.114 0"},
    {"sepia.SourcePicture = p\nsepia.SepiaRed = 40\nsepia.FactorBlue = 0.5\n"
     "sepia.FactorBlue = sepia.FactorBlue / 2\nPrint sepia.Run, sepia.FactorBlue\n"
     "Show(sepia.DestinationPicture)",
     "True 0.25\n4 2 &c3E1616 &cAA8282"},
    {"sepia.Close\nPrint sepia.SourcePicture Is Nil, sepia.DestinationPicture Is Nil", "True True"},
};

class MemberScriptTest : public FolderTest, public testing::WithParamInterface<const char*> {
 protected:
  [[nodiscard]] Outcome run(const std::string& script) const {
    write("script.rbs", script);
    return qrz("--check --pictures " + std::string(GetParam()) + " run " + path("script.rbs"));
  }
};

INSTANTIATE_TEST_SUITE_P(Pictures, MemberScriptTest, testing::Values("gworld", "context", "bitmap"),
                         [](const auto& pictures) { return pictures.param; });

TEST_P(MemberScriptTest, ValuesOfEveryKind) {
  std::string script = kPrologue;
  std::string expected;
  for (const Line& line : kLines) {
    script += line.script + std::string("\n");
    expected += line.output + std::string("\n");
  }
  const Outcome outcome = run(script);
  EXPECT_EQ(outcome.output, expected);
  EXPECT_EQ(outcome.status, 0);
}

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
