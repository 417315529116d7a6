// PICT files: opening, saving, and what scripts can do with the pictures.

#include <filesystem>

#include "host/core/exception.h"
#include "host/files/file_bytes.h"
#include "host/files/picture_io.h"
#include "tests/support/command.h"
#include "tests/support/pict_layout.h"

namespace host {
namespace {

/// A picture of two pixels, red and green.
Bytes twoPixels(int version, uint16_t size = 0) {
  const PictPixels pixels{0x98, 8};
  const PictValues values{2, 1, {1, 0}};
  std::mt19937 random;
  PictLayout layout(version);
  layout.start(10, 20, 11, 22).putOpcode(pixels.opcode);
  putMap(layout, pixels, 2, 0, 0, values, {0, 0xFFFF, 0, 0xFFFF, 0, 0}, true);
  layout.putBox(0, 0, 1, 2).putBox(10, 20, 11, 22).put16(0);
  putRows(layout, pixels, 2, values, random);
  Bytes bytes = layout.finish();
  if (size == 0) return bytes;
  bytes[0] = static_cast<uint8_t>(size >> 8);
  bytes[1] = static_cast<uint8_t>(size);
  return bytes;
}

const Words kTwoPixels = {0x00FF0000, 0x0000FF00};

class PictFileTest : public FolderTest {
 protected:
  using FolderTest::write;
  void write(const std::string& name, const Bytes& bytes) const {
    write(name, std::string(bytes.begin(), bytes.end()));
  }
  [[nodiscard]] std::string openError(const Bytes& bytes) const {
    write("bad.pict", bytes);
    try {
      openPicture(path("bad.pict"));
    } catch (const RaisedException& raised) {
      const auto& exception = dynamic_cast<const ExceptionObject&>(*raised.instance);
      return exception.message.substr(path("bad.pict").size() + 2);
    }
    return "";
  }
  /// What a script prints.
  [[nodiscard]] std::string run(const std::string& script) const {
    write("script.rbs", script);
    return qrz("--check run " + path("script.rbs") + " " + folder).output;
  }
};

TEST_F(PictFileTest, FilesWithAndWithoutTheirHeader) {
  for (const Bytes& data : {twoPixels(1), twoPixels(2), twoPixels(2, 0x424D), twoPixels(2, 0x5036),
                            twoPixels(2, 0xFFD8)}) {
    Bytes ofAnApplication(512, 0);
    ofAnApplication[0] = 'B';
    ofAnApplication[1] = 'M';
    for (const Bytes& header : {Bytes(), Bytes(512, 0), Bytes(512, 0xA5), ofAnApplication}) {
      if (header == ofAnApplication && data == twoPixels(1)) continue;  // too little to tell
      write("two.dat", joined({header, data}));
      const auto picture = openPicture(path("two.dat"));
      EXPECT_EQ(picture->describe(), "Picture 2x1 (PICT data)");
      EXPECT_EQ(picture->pixels(), kTwoPixels);
      EXPECT_FALSE(picture->mask);
      savePicture(*picture, path("again.PCT"));
      EXPECT_EQ(readFile(path("again.PCT")), joined({Bytes(512, 0), data})) << "the same data";
    }
  }
}

TEST_F(PictFileTest, SavedFilesHoldWhatIsRecorded) {
  const auto source = openPicture("sample:alpha@77x33");
  savePicture(*source, path("saved.pict"));
  EXPECT_EQ(readFile(path("saved.pict")), joined({Bytes(512, 0), recordedBytes(source)}));
  // A mask is not in the data, so it is drawn with it.
  write("two.pict", twoPixels(2));
  const auto masked = openPicture(path("two.pict"));
  masked->mask = pictureOf(2, 1, {0, 0x00FFFFFF});
  savePicture(*masked, path("masked.pict"));
  EXPECT_EQ(openPicture(path("masked.pict"))->pixels(), (Words{0x00FFFFFF, 0x0000FF00}));
}

TEST_F(PictFileTest, FilesThatCannotBe) {
  const auto withFrame = [](const std::string& frame) {
    Bytes bytes = twoPixels(2);
    const Bytes box = hex(frame);
    std::copy(box.begin(), box.end(), bytes.begin() + 2);
    return bytes;
  };
  EXPECT_EQ(openError(withFrame("0000 0000 0000 0005")), "the picture has no pixels");
  EXPECT_EQ(openError(withFrame("0005 0005 0004 0009")), "the picture has no pixels");
  EXPECT_EQ(openError(withFrame("8000 8000 7FFF 7FFF")),
            "a picture of 65535 x 65535 pixels is too large; at most 128 megapixels and 1000000 "
            "pixels a side are possible, make it smaller");
  Bytes emptyFrame = twoPixels(1);
  emptyFrame[9] = 0;
  EXPECT_EQ(openError(emptyFrame),
            "is no picture that can be read; use PNG, JPEG, BMP, GIF, TGA, PNM or PICT");
  const auto wide = Picture::create(Storage::GWorld, 4096, 1);
  EXPECT_THROW(savePicture(*wide, path("wide.pict")), RaisedException);
  EXPECT_FALSE(std::filesystem::exists(path("wide.pict")));
  const Outcome outcome = qrz("apply self sample:edges@4096x2 -o " + path("wide.pict"));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.output, path("wide.pict") +
                                ": more than 4095 pixels across or 32767 down do not "
                                "fit this format; use .png or .bmp\n");
}

TEST_F(PictFileTest, ScriptsReadPicturesOfPictData) {
  write("two.pict", twoPixels(2));
  for (const char* mode : {"gworld", "context", "bitmap"}) {
    write("script.rbs", R"(
Dim p As Picture = Picture.Open(Argument(0) + "/two.pict")
Print Str(p.Width) + " " + Str(p.Height) + " " + Str(p.Depth) + " " + Str(p.Graphics.Width)
Dim c As Color = p.Graphics.Pixel(1, 0)
Print Str(c.Red) + " " + Str(c.Green) + " " + Str(c.Blue)
If p.Mask Is Nil Then
  Print "no mask"
End If
Dim copy As New Picture(4, 2, 32)
copy.Graphics.DrawPicture(p, 0, 0, 4, 2, 0, 0, 2, 1)
copy.Save(Argument(0) + "/copy.png")
p.Save(Argument(0) + "/p.png")
p.Save(Argument(0) + "/p.pict")
)");
    const Outcome outcome = qrz(std::string("--check --pictures ") + mode + " run " +
                                path("script.rbs") + " " + folder);
    EXPECT_EQ(outcome.output, "2 1 32 2\n0 255 0\nno mask\n") << mode;
    EXPECT_EQ(colors(*openPicture(path("p.png"))), kTwoPixels);
    EXPECT_EQ(openPicture(path("p.pict"))->pixels(), kTwoPixels);
    EXPECT_EQ(colors(*openPicture(path("copy.png"))),
              (Words{0xFF0000, 0xFF0000, 0xFF00, 0xFF00, 0xFF0000, 0xFF0000, 0xFF00, 0xFF00}));
  }
}

TEST_F(PictFileTest, DrawingIntoPicturesOfPictDataIsRefused) {
  write("two.pict", twoPixels(2));
  for (const std::string statement :
       {"g.Pixel(0, 0) = &c000000", "g.FillRect(0, 0, 2, 1)", "g.DrawLine(0, 0, 1, 0)",
        "g.DrawPicture(p, 0, 0)", "g.DrawPicture(p, 0, 0, 2, 1)"}) {
    const std::string output =
        run("Dim p As Picture = Picture.Open(Argument(0) + \"/two.pict\")\n"
            "Dim g As Graphics = p.Graphics\n"
            "Try\n" +
            statement +
            "\nCatch e As UnsupportedOperationException\n"
            "Print e.Message\n"
            "End Try\n");
    EXPECT_EQ(output,
              "A picture of PICT data cannot be drawn into; draw it into a new picture, and into "
              "that.\n")
        << statement;
  }
}

}  // namespace
}  // namespace host
