#include "host/files/image_file.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "host/files/file_bytes.h"
#include "tests/support/command.h"
#include "tests/support/pict.h"

namespace host {
namespace {

namespace fs = std::filesystem;

/// Every byte of every word differs from its neighbours', and alpha takes all kinds of values.
Image testImage(int32_t width, int32_t height, bool hasAlpha) {
  Image image{width, height, hasAlpha, {}};
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) {
      const auto n = static_cast<uint32_t>(x * 37 + y * 101);
      const uint32_t alpha = hasAlpha ? n * 5 & 255 : 0;
      image.pixels.push_back(alpha << 24 | (n & 255) << 16 | (n * 3 & 255) << 8 | (n * 7 & 255));
    }
  }
  return image;
}

class ImageFile : public FolderTest {
 protected:
  [[nodiscard]] std::string store(const std::string& name, const std::string& bytes) const {
    fs::remove(path(name));  // quicker than emptying it
    write(name, bytes);
    return path(name);
  }
  [[nodiscard]] std::string store(const std::string& name, const Bytes& bytes) const {
    return store(name, std::string(bytes.begin(), bytes.end()));
  }
  [[nodiscard]] long fileCount() const { return std::distance(fs::directory_iterator(folder), {}); }

  /// What reading says, without the path, or "" if it works.
  std::string readError(const std::string& file) const {
    return errorOf(file, [&] { readImage(file); });
  }
  std::string writeError(const std::string& file, const Image& image) const {
    return errorOf(file, [&] { writeImage(file, image); });
  }
  std::string readErrorOf(const std::string& bytes) const {
    return readError(store("given", bytes));
  }
  Words pixelsOf(const std::string& bytes) const { return readImage(store("given", bytes)).pixels; }

 private:
  template <typename Action>
  static std::string errorOf(const std::string& file, const Action& action) {
    try {
      action();
      return "";
    } catch (const ImageError& error) {
      const std::string text = error.what();
      EXPECT_EQ(text.rfind(file + ": ", 0), 0U) << text;
      EXPECT_EQ(text.find('\n'), std::string::npos) << text;
      return text.substr(std::min(text.size(), file.size() + 2));
    }
  }
};

TEST_F(ImageFile, GivesBackEveryWordItWrote) {
  for (const std::string name : {"a.png", "A.PNG", "a.bmp", "a.tga"}) {
    const auto expectBack = [&](const Image& image) {
      writeImage(path(name), image);
      const Image back = readImage(path(name));
      EXPECT_EQ(back.width, image.width);
      EXPECT_EQ(back.height, image.height);
      EXPECT_EQ(back.hasAlpha, image.hasAlpha) << name;
      EXPECT_EQ(back.pixels, image.pixels) << name << ' ' << image.width << 'x' << image.height;
    };
    for (const auto& [width, height] : {std::pair{1, 1}, {3, 5}, {17, 2}, {130, 7}, {1, 9}}) {
      for (const bool hasAlpha : {false, true}) expectBack(testImage(width, height, hasAlpha));
    }
    expectBack({2, 1, true, {0x00123456, 0x00ABCDEF}});
    expectBack({2, 1, true, {0xFF123456, 0xFFABCDEF}});
    writeImage(path(name), {1, 1, false, {0xFF123456}});
    EXPECT_EQ(readImage(path(name)).pixels, Words{0x123456}) << "an unused top byte is dropped";
    EXPECT_TRUE(name != "a.png" || readFile(path(name)) == encodePng(readImage(path(name))));
  }
  EXPECT_EQ(fileCount(), 4);
}

TEST_F(ImageFile, WritesJpegCloseToThePictureAndWithoutAlpha) {
  Image image{33, 21, true, {}};
  for (uint32_t i = 0; i < 33 * 21; ++i) {
    image.pixels.push_back(0x40000000 | i % 33 * 7 << 16 | i / 33 * 9 << 8 | 128);
  }
  for (const std::string name : {"a.jpg", "a.JPEG"}) {
    writeImage(path(name), image);
    const Image back = readImage(path(name));
    ASSERT_EQ(back.pixels.size(), image.pixels.size());
    EXPECT_FALSE(back.hasAlpha);
    for (size_t i = 0; i < back.pixels.size(); ++i) {
      EXPECT_EQ(back.pixels[i] >> 24, 0U);
      for (const int shift : {0, 8, 16}) {
        const int difference = static_cast<int>(back.pixels[i] >> shift & 255) -
                               static_cast<int>(image.pixels[i] >> shift & 255);
        EXPECT_LE(std::abs(difference), 8) << i;
      }
    }
  }
}

TEST_F(ImageFile, ReadsEveryKindOfPnm) {
  const Words blackWhite = {0x000000, 0xFFFFFF, 0xFFFFFF, 0x000000};
  EXPECT_EQ(pixelsOf("P1\n# a comment\n2 2\n10 # another\n01"), blackWhite);
  EXPECT_EQ(pixelsOf("P4 2 2\n\xBF\x40"), blackWhite);
  const Words greys = {0x000000, 0x808080, 0xFFFFFF};
  EXPECT_EQ(pixelsOf("P2\t3\r\n#x\n1 2 0 #y\n1\t2"), greys);
  EXPECT_EQ(pixelsOf(std::string("P5 3 1 2\n\0\1\2", 12)), greys);
  EXPECT_EQ(pixelsOf(std::string("P5 3 1 65535 \0\0\x80\0\xFF\xFF", 19)), greys);
  const Words colors = {0xFF0000, 0x0080FF};
  EXPECT_EQ(pixelsOf("P3 2 1 1000 1000 0 0 0 500 1000\n"), colors);
  EXPECT_EQ(pixelsOf(std::string("P6 #c\n2 1 # d\n255\n\xFF\0\0\0\x80\xFF", 24)), colors);
}

TEST_F(ImageFile, TellsWhatIsWrongWithPnm) {
  const auto damaged = [](const std::string& detail) {
    return "the PNM picture is damaged (" + detail + "); get an intact copy of the file";
  };
  EXPECT_EQ(readErrorOf("P2 2 2 255 1 2 3"), damaged("the file ends too early"));
  EXPECT_EQ(readErrorOf("P6 20000 6000 255 abc"), damaged("the file ends too early"));
  EXPECT_EQ(readErrorOf("P2 1 1 7 8"), damaged("a sample is larger than the largest allowed"));
  EXPECT_EQ(readErrorOf("P2 1 1 70000 8"), damaged("the largest sample has to be 1 to 65535"));
  EXPECT_EQ(readErrorOf("P2 1 1 0 0"), damaged("the largest sample has to be 1 to 65535"));
  EXPECT_EQ(readErrorOf("P3 1 1 9 1 2 -3"), damaged("a number is expected"));
  EXPECT_EQ(readErrorOf("P2 99999999999 1 9 1"), damaged("a number is too large"));
  EXPECT_EQ(readErrorOf("P1 2 1 12"), damaged("0 or 1 is expected"));
  EXPECT_EQ(readErrorOf("P1 0 1 1"), "the picture has no pixels");
}

TEST_F(ImageFile, TellsWhyAFileCannotBeRead) {
  for (const std::string bytes : {"P", "hello, world, this is text and no picture"}) {
    EXPECT_EQ(readErrorOf(bytes),
              "is no picture that can be read; use PNG, JPEG, BMP, GIF, TGA, PNM or PICT");
  }
  try {
    readImage(std::string("a\0b\n", 4));
    ADD_FAILURE();
  } catch (const ImageError& error) {
    EXPECT_STREQ(error.what(), "a?b?: the name contains a zero byte; choose another one");
  }
  const std::string tooLarge =
      " pixels is too large; at most 128 megapixels and 1000000 pixels a side are possible, make "
      "it smaller";
  EXPECT_EQ(readErrorOf("P5 16000 8001 255 "), "a picture of 16000 x 8001" + tooLarge);
  EXPECT_EQ(readErrorOf("P5 1000001 1 255 "), "a picture of 1000001 x 1" + tooLarge);
}

TEST_F(ImageFile, NoticesChangedPngBytesByTheirChecksum) {
  Bytes bytes = encodePng(testImage(5, 5, false));
  bytes[bytes.size() / 2] ^= 1;
  EXPECT_EQ(readError(store("a.png", bytes)),
            "the PNG picture is damaged (a checksum does not fit); get an intact copy of the file");
}

TEST_F(ImageFile, ReadsOneFrameOfGifWithAndWithoutTransparency) {
  const std::string start("GIF89a\1\0\1\0\x80\0\0\x10\x20\x30\x40\x50\x60", 19);
  const std::string transparent("!\xF9\4\1\0\0\0\0", 8);  // makes the first colour transparent
  const std::string frame(",\0\0\0\0\1\0\1\0\0\2\2\x44\1\0;", 16);
  EXPECT_EQ(pixelsOf(start + frame), Words{0x102030});
  const Image image = readImage(store("t.gif", start + transparent + frame));
  EXPECT_TRUE(image.hasAlpha);
  EXPECT_EQ(image.pixels[0] >> 24, 0U);
  EXPECT_EQ(readErrorOf(start + ";"),
            "the GIF picture is damaged (there is no picture in it); get an intact copy of the "
            "file");
}

TEST_F(ImageFile, TruncatedPicturesAreRefused) {
  for (const std::string name : {"a.png", "a.jpg", "a.bmp", "a.tga"}) {
    writeImage(path(name), testImage(6, 5, true));
    const Bytes bytes = readFile(path(name));
    for (size_t length = 0; length < bytes.size(); ++length) {
      const Bytes cut(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(length));
      EXPECT_NE(readError(store("cut", cut)), "") << name << ' ' << length;
    }
  }
}

TEST_F(ImageFile, LeavesNothingBehindWhenItCannotWrite) {
  const Image image = testImage(40, 40, false);
  for (const std::string name : {"out.xyz", "out", "dir.png/out", "out.png.", "out.gif"}) {
    EXPECT_EQ(writeError(path(name), image),
              "unknown picture format; use .png, .jpg, .bmp, .tga or .pict");
    EXPECT_THROW(checkWritableFormat(name), ImageError);
  }
  EXPECT_NO_THROW(checkWritableFormat("nowhere/out.JpG"));
  EXPECT_EQ(writeError(path("a.png"), Image{}), "the picture has no pixels");
  EXPECT_EQ(writeError(path("a.png"), Image{2, 2, false, {1, 2, 3}}),
            "the picture has not as many pixels as its size says");
  const Image wide{65536, 1, false, Words(65536)};
  for (const std::string name : {"a.jpg", "a.tga"}) {
    EXPECT_EQ(writeError(path(name), wide),
              "more than 65535 pixels a side do not fit this format; use .png or .bmp");
  }
  EXPECT_EQ(fileCount(), 0);
}

}  // namespace
}  // namespace host
